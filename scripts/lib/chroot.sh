# A root folder with another release of Debian, and running commands in it. To be sourced; needs
# root.

# make_chroot RELEASE FOLDER: a minimal system, from the mirrors that apt uses here.
make_chroot() {
  local release=$1 folder=$2 mirror security
  mirror=$(mirror_of Debian)
  security=$(mirror_of Debian-Security)
  [ -n "$mirror" ] || { echo "apt knows no mirror of Debian" >&2; return 1; }
  rm -rf --one-file-system "$folder.new"
  mkdir -p "$(dirname "$folder")"
  debootstrap --variant=minbase --include=ca-certificates "$release" "$folder.new" "$mirror"
  {
    echo "deb $mirror $release main"
    echo "deb $mirror $release-updates main"
    [ -z "$security" ] || echo "deb $security $release-security main"
  } >"$folder.new/etc/apt/sources.list"
  # The settings without which these mirrors could not be used.
  apt-config dump | grep -iE '^Acquire::(https?::Proxy|Check-Valid-Until)[ :]' \
    >"$folder.new/etc/apt/apt.conf.d/99mirror" || true
  # What is installed starts no service, and need not be written down before it goes on.
  printf '#!/bin/sh\nexit 101\n' >"$folder.new/usr/sbin/policy-rc.d"
  chmod 755 "$folder.new/usr/sbin/policy-rc.d"
  echo force-unsafe-io >"$folder.new/etc/dpkg/dpkg.cfg.d/unsafe-io"
  mv "$folder.new" "$folder"
}

# copy_clean_chroot RELEASE FOLDER: a copy of a minimal system that is made once, beside the folder.
copy_clean_chroot() {
  local release=$1 folder=$2 clean
  clean=$(dirname "$folder")/$release
  if [ ! -d "$clean" ]; then
    echo "$release: making a clean system ..."
    mkdir -p "$(dirname "$clean")"
    make_chroot "$release" "$clean" >"$clean.log" 2>&1 || { tail -n 20 "$clean.log" >&2; return 1; }
  fi
  rm -rf --one-file-system "$folder"
  cp -a "$clean" "$folder"
}

# mirror_of LABEL: where apt has the packages with this label from.
mirror_of() {
  apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' "Label: $1" |
    sed -n '1s,/$,,p'
}

# in_chroot FOLDER COMMAND...: runs a command that sees nothing but this folder. Its mounts and all
# its processes are gone when it ends, or when the script does, however that ends.
in_chroot() {
  local folder=$1
  shift
  cp -L /etc/resolv.conf "$folder/etc/resolv.conf"
  setpriv --pdeathsig KILL -- \
    unshare --mount --pid --fork --kill-child=KILL --propagation private -- \
    bash -euc "$_enter_chroot" bash "$folder" "$@"
}

# Not by chroot: whoever is in one may not make the user namespaces that the tests need.
_enter_chroot='
cd "$1"
shift
mount --rbind . "$PWD"
cd "$PWD"
mount --rbind /dev dev
mount -t tmpfs -o mode=1777 tmpfs dev/shm
mount --rbind /sys sys
mount -t proc proc proc
mount -t tmpfs -o mode=1777 tmpfs tmp
mount -t tmpfs -o mode=755 tmpfs run
mkdir run/old
pivot_root . run/old
umount --lazy /run/old
rmdir /run/old
cd /
exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 TERM=dumb \
  DEBIAN_FRONTEND=noninteractive "$@"
'
