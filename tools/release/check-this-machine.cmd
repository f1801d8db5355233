@echo off
rem Tries TA-LU Setup on this machine, and takes away again what it made. A double click asks for what it needs;
rem an administrator's prompt can do without questions:
rem
rem   check-this-machine --client                   the tests of the wizard's parts, and the sample as a client
rem   check-this-machine --server NAME --user NAME  as a server too: fresh, upgrade, demo, and a build that fails
rem
rem The SQL Server is this machine's; its password is then in the variable SQL_PASSWORD.
rem What came of it is in check-this-machine.txt beside this file; it ends with 0 when all is as it should be.
setlocal EnableExtensions DisableDelayedExpansion
set "Check=%~dp0Check\Check.js"
if not exist "%Check%" (
  echo Nothing was checked: the folder Check is not beside this file. Unpack the whole zip, and start it there.
  goto failed
)
rem Setup is a 32-bit program: so is what looks after it.
set "Host=%SystemRoot%\SysWOW64\cscript.exe"
if not exist "%Host%" set "Host=%SystemRoot%\System32\cscript.exe"
set Options=%*
if defined Options goto check

set Options=--elevate
call :run
if not %ERRORLEVEL%==10 goto failed
set "Server="
set "User="
set /p "Server=The SQL Server of this machine, such as .\SQLEXPRESS (only Enter: without one): "
set Options=--client
if not defined Server goto check
set /p "User=A login that may create databases (only Enter: sa): "
if not defined User set "User=sa"
set Options=--server "%Server%" --user "%User%"
if defined SQL_PASSWORD goto check
echo Its password:
for /f "delims=" %%P in ('%SystemRoot%\System32\WindowsPowerShell\v1.0\powershell.exe -NoProfile -Command "$m = [Runtime.InteropServices.Marshal]; $m::PtrToStringBSTR($m::SecureStringToBSTR((Read-Host -AsSecureString)))"') do set "SQL_PASSWORD=%%P"

:check
call :run
if not %ERRORLEVEL%==10 goto failed
if "%~1"=="" pause
exit /b 0

:failed
if "%~1"=="" pause
exit /b 1

rem Check.js ends with 10 or more, the host with 1 where it does not take it: that of Wine knows no //E, without
rem which other hosts go by what the machine has .js for.
:run
"%Host%" //nologo //E:JScript "%Check%" %Options%
if %ERRORLEVEL%==1 "%Host%" //nologo "%Check%" %Options%
exit /b %ERRORLEVEL%
