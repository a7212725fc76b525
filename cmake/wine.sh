# Sourced by test: a Windows system and a display of this build's own, in build/wine. Call start_wine before anything runs
# under Wine, and stop_wine at the end.

export WINEPREFIX="$PWD/build/wine" WINEARCH=win64 WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"  # no .NET, no browser, no menus
wine_server=/usr/lib/wine/wineserver
wine=/usr/lib/wine/wine64  # Debian's command wine complains of 32-bit programs that it cannot run
wine_display=""

start_wine() {
  [ -x "$wine" ] || wine=$(command -v wine)
  [ -x "$wine_server" ] || wine_server=$(command -v wineserver)
  mkdir -p "$WINEPREFIX"
  rm -f "$WINEPREFIX/display"
  mkfifo "$WINEPREFIX/display"
  Xvfb -displayfd 3 -screen 0 1920x1200x24 -nolisten tcp -noreset 3>"$WINEPREFIX/display" 2>/dev/null &
  wine_display=$!
  read -r number <"$WINEPREFIX/display"
  rm "$WINEPREFIX/display"
  export DISPLAY=":$number"
  unset WAYLAND_DISPLAY
  "$wine_server" -p  # it stays, so that programs start quickly
  if [ ! -f "$WINEPREFIX/ready" ]; then
    wineboot --init >"$WINEPREFIX/boot.log" 2>&1 || { cat "$WINEPREFIX/boot.log" >&2; return 1; }
    # A crash ends a program at once: nobody is there to debug it.
    "$wine" reg add 'HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug' /v Debugger /d none /f >/dev/null
    touch "$WINEPREFIX/ready"
  fi
  # Its services and its desktop start with the first program, and keep that one's output open: so here.
  "$wine" winecfg -v win10 >"$WINEPREFIX/boot.log" 2>&1
}

stop_wine() {
  "$wine_server" -k || true
  [ -z "$wine_display" ] || kill "$wine_display"
  wine_display=""
}
