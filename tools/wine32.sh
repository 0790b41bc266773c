# Where 32-bit Wine comes from on this machine. Sourced by tools/setup, tools/wine and ./test, with $root set.

wine32_root=/var/cache/mrktxtmsg/wine32
wine32_missing=$root/build/wine32.missing

# Prints "multiarch" (an ordinary package) or "chroot" (a small i386 Debian in $wine32_root); fails without either.
wine32_way() {
  if [ -x /usr/lib/wine/wine ]; then
    echo multiarch
  elif [ -x "$wine32_root/usr/lib/wine/wine" ]; then
    echo chroot
  else
    return 1
  fi
}
