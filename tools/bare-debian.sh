# SPDX-License-Identifier: MIT
# For scripts that try something in a bare minimal Debian of this system's release, as root and with debootstrap:
#   . tools/bare-debian.sh
# creates the system in the folder $root and removes it when the script ends. To get a mount namespace of its own, the
# script first re-executes itself.
[ -n "${ZR_OWN_MOUNTS:-}" ] || ZR_OWN_MOUNTS=1 exec unshare --mount --propagation private "$0" "$@"
root=$(mktemp -d)
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf "$root" "$root.log"' EXIT
trap 'exit 130' INT TERM

fail() {
    echo "$(basename "$0"): $1" >&2
    exit 1
}
inside() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 "$@"; }
install() { inside env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "$@" >"$root/log" 2>&1 || {
    tail -5 "$root/log" >&2
    fail "cannot install $*"
}; }

debootstrap --variant=minbase "$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)" "$root" >"$root.log" 2>&1 ||
    { tail -5 "$root.log" >&2; fail "debootstrap failed"; }
# The dynamic loader finds the program's own folder through it.
mount -t proc proc "$root/proc"
