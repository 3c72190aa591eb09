@echo off
rem Runs every test program in this folder, and then says whether all passed.
setlocal
pushd "%~dp0"
set GTEST_BRIEF=1
set failed=
for %%T in (*_tests.exe bounds_report.exe) do call :run %%T
popd
set result=All tests passed
if defined failed set result=FAILED:%failed%
rem Creates nothing, but needs the right to.
reg add HKLM\Software\Microsoft\Windows\CurrentVersion /f >nul 2>nul
if errorlevel 1 set result=%result%; what needs administrator rights was skipped
echo %result%.

rem Explorer starts a script by its quoted path and a space, and the window closes with it.
set command=started by %cmdcmdline%
set command=%command:"='%
call set rest=%%command:'%~f0' =%%
if not "%rest%"=="%command%" pause
if defined failed exit /b 1
exit /b 0

:run
echo == %1
"%~dp0%1"
if not "%errorlevel%"=="0" set failed=%failed% %1
exit /b 0
