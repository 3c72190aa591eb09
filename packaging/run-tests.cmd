@echo off
rem Runs every test program of this folder; the last line says how it went.
setlocal
pushd "%~dp0"
set failed=
for %%T in (*_tests.exe) do call :run %%T
popd
if defined failed (
    echo FAILED:%failed%
    exit /b 1
)
echo All tests passed.
exit /b 0

:run
echo == %1
"%~dp0%1" --gtest_brief=1
if errorlevel 1 set failed=%failed% %1
exit /b 0
