# shellcheck shell=bash
# A bare Debian in a folder, for tools/cleanroot and tools/systems. Sourced; as root.

# The mirror of this system's own apt, or the one in VELTRANE_MIRROR.
bare_mirror() {
    local mirror=${VELTRANE_MIRROR:-}
    [ -n "$mirror" ] || mirror=$(apt-get indextargets --format '$(REPO_URI)' \
        'Created-By: Packages' 'Origin: Debian' 'Label: Debian' | head -n 1)
    [ -n "$mirror" ] || { echo "$0: no Debian mirror in apt's sources; name one in VELTRANE_MIRROR" >&2 && return 1; }
    echo "$mirror"
}

# Runs the whole script again with mounts of its own, which end with it.
bare_namespace() {
    [ "$(id -u)" -eq 0 ] || { echo "$0: as root, please" >&2 && exit 2; }
    for tool in debootstrap unshare; do
        command -v "$tool" > /dev/null || { echo "$0: wants $tool" >&2 && exit 2; }
    done
    [ -n "${VELTRANE_NAMESPACE:-}" ] \
        || VELTRANE_NAMESPACE=yes exec unshare --mount --propagation private "$0" "$@"
}

# Has the kernel start another processor's programs through qemu. Recent kernels forget it when the script's own mounts
# end.
bare_emulate() {
    local arch=$1 kind rules=/proc/sys/fs/binfmt_misc
    [ "$arch" != "$(dpkg --print-architecture)" ] || return 0
    case $arch in
        arm64) kind=qemu-aarch64 ;;
        armhf) kind=qemu-arm ;;
        s390x | riscv64) kind=qemu-$arch ;;
        i386) return 0 ;;
        *) echo "$0: no emulator is known for $arch" >&2 && return 1 ;;
    esac
    [ -e $rules/register ] || mount -t binfmt_misc none $rules \
        || { echo "$0: this machine does not let programs of another processor start" >&2 && return 1; }
    [ ! -e "$rules/$kind" ] || return 0
    [ -e "/usr/lib/binfmt.d/$kind.conf" ] || { echo "$0: wants qemu-user-static" >&2 && return 1; }
    cat "/usr/lib/binfmt.d/$kind.conf" > $rules/register
}

# bare_make SUITE ARCH FOLDER
bare_make() {
    local suite=$1 arch=$2 root=$3 mirror
    mirror=$(bare_mirror)
    bare_emulate "$arch"
    debootstrap --arch="$arch" --variant=minbase "$suite" "$root" "$mirror"
    # A mirror may lag behind; a root that is thrown away wants none of the newest fixes.
    echo 'Acquire::Check-Valid-Until "false";' > "$root/etc/apt/apt.conf.d/90veltrane"
    mount -t proc proc "$root/proc"
    mount --rbind /dev "$root/dev"
}

# bare_enter FOLDER COMMAND…
bare_enter() {
    local root=$1
    shift
    chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@"
}

bare_remove() {
    local root=$1
    ! mountpoint -q "$root/dev" || umount -R --lazy "$root/dev"
    ! mountpoint -q "$root/proc" || umount --lazy "$root/proc"
    rm -rf --one-file-system "$root"
}
