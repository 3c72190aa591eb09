@echo off
rem Runs every test program of this folder; the last line says how it went.
setlocal
pushd "%~dp0"
set GTEST_BRIEF=1
set failed=
set skipped=
set log=%TEMP%\vantrel-tests-%RANDOM%.log
for %%T in (*_tests.exe bounds_report.exe) do call :run %%T
popd
set result=All tests passed
if defined failed set result=FAILED:%failed%
if defined skipped set result=%result%; what takes an administrator's rights was skipped
echo %result%.

rem Explorer starts a script by this command, and the window closes with it.
set command=%cmdcmdline:"='%
call set rest=%%command:''%~f0' '=%%
if not "%rest%"=="%command%" pause
if defined failed exit /b 1
exit /b 0

:run
echo == %1
"%~dp0%1" >"%log%" 2>&1
if not "%errorlevel%"=="0" set failed=%failed% %1
type "%log%"
find "SKIPPED" "%log%" >nul && set skipped=yes
del "%log%"
exit /b 0
