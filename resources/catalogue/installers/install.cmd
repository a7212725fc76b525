@echo off
rem Installs a sample package: all that a sample can do is to read it to its end, and to take a moment.
if not exist "%ACCESSORY_PACKAGE%" exit /b 1
type "%ACCESSORY_PACKAGE%" > nul
if errorlevel 1 exit /b 1
ping -n 2 127.0.0.1 > nul
echo installed %ACCESSORY_PACKAGE%
exit /b 0
