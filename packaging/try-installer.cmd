@echo off
rem try-installer.cmd MSI SAMPLES OUT: installs silently, runs the doctor and every handler, removes, and checks what is
rem left. Needs an administrator, and a machine without Vantrel64; logs, pictures and sheet go to the folder OUT.
setlocal
set msi=%~f1
set samples=%~f2
set out=%~f3
set installed=%ProgramFiles%\Vantrel64
set failed=
if not exist "%out%" md "%out%"

set environment="HKLM\System\CurrentControlSet\Control\Session Manager\Environment"
reg query %environment% /v Path >"%out%\path.txt"

echo == install
start /wait msiexec /i "%msi%" /qn /l*v "%out%\install.log"
call :check install
echo == doctor
"%installed%\zmi-preview.exe" --doctor "%samples%\lake.zmi" >"%out%\doctor.txt"
call :check doctor
type "%out%\doctor.txt"
echo == preview
"%installed%\zmi-preview.exe" --out "%out%" --sheet "%out%\sheet.png" "%samples%" >"%out%\preview.txt"
call :check preview
type "%out%\preview.txt"
echo == remove
start /wait msiexec /x "%msi%" /qn /l*v "%out%\remove.log"
call :check remove

if exist "%installed%" call :left "%installed%"
for %%I in (
    {E1A95D7C-0B48-4c63-9F1D-2A6B8C04E79F} {C46E1B3A-92F7-4d05-A1E8-7B3D5F92C0A6}
    {5B27C0E9-D4A1-4f38-B6C2-0E9A81F45D27} {A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}
    {3F1C9A42-6B0D-4e57-9A21-5C8E7D40B613}
) do call :key "HKLM\Software\Classes\CLSID\%%I"
call :key "HKLM\Software\Classes\.zmi"
call :key "HKLM\Software\Classes\SystemFileAssociations\.zmi"
call :key "HKLM\Software\Classes\Folder\ShellEx\ColumnHandlers\{A8D4E2F1-37C9-4b6a-8E05-91F2C6D7A3B4}"
call :key "HKLM\Software\Microsoft\Windows\CurrentVersion\PropertySystem\PropertyHandlers\.zmi"
reg query %environment% /v Path >"%out%\path-left.txt"
fc "%out%\path.txt" "%out%\path-left.txt"
if errorlevel 1 call :left PATH

if defined failed (
    echo FAILED:%failed%
    exit /b 1
)
echo The installer installs, works and removes.
exit /b 0

:check
if not "%errorlevel%"=="0" set failed=%failed% %1
exit /b 0

:key
reg query %1 >nul 2>nul
if not errorlevel 1 call :left %1
exit /b 0

:left
set failed=%failed% left:%1
exit /b 0
