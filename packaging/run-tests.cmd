@echo off
rem Runs every test program of this folder; the last line says how it went.
setlocal
pushd "%~dp0"
set GTEST_BRIEF=1
set failed=
for %%T in (*_tests.exe bounds_report.exe) do call :run %%T
popd
if defined failed (
    echo FAILED:%failed%
    exit /b 1
)
echo All tests passed.
exit /b 0

:run
echo == %1
"%~dp0%1"
if not "%errorlevel%"=="0" set failed=%failed% %1
exit /b 0
