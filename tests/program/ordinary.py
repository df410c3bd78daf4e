"""Runs a test as a user whom permission bits bind, with mounts to fail on.

Root passes every permission bit, so the process is replaced: by one of the user "nobody", in a mount name
space of its own, from copies that this user can read.
"""

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

import pictures
import table

NOBODY = "65534"

# The arguments: the folder, the user, whether mounts can be made, the command.
PREPARE = """
set -e
if [ "$3" = mounts ] && mount -t tmpfs -o mode=0777 none "$1/readonly" 2> /dev/null; then
    cp "$1/source.gif" "$1/readonly/photo.gif"
    mount -o remount,ro "$1/readonly"
    mount -t tmpfs -o mode=0777,size=512k none "$1/small"
    export VELTRANE_MOUNTS=$1
fi
user=$2
shift 3
exec setpriv --reuid "$user" --regid "$user" --clear-groups --inh-caps=-all -- "$@"
"""


def become():
    """Goes on as an ordinary user; returns at once for a process that is one."""
    if os.geteuid() != 0 or not os.access(table.PROGRAM, os.X_OK):
        return
    base = Path(tempfile.mkdtemp(prefix="veltrane-ordinary-"))
    try:
        sys.exit(_as_nobody(base))
    finally:
        shutil.rmtree(base, ignore_errors=True)


def _as_nobody(base):
    base.chmod(0o755)
    for name in ("readonly", "small"):
        (base / name).mkdir()
    home = base / "home"
    home.mkdir()
    os.chown(home, int(NOBODY), int(NOBODY))
    pictures.make(base / "source.gif", pictures.RED)
    # Under its own name, after which its settings are called.
    program = shutil.copy(table.PROGRAM, base / Path(table.PROGRAM).name)
    for folder in ("tests/program", "tools/desk"):
        shutil.copytree(table.ROOT / folder, base / folder, ignore=shutil.ignore_patterns("__pycache__"))
    subprocess.run(["chmod", "-R", "a+rX", base], check=True)
    script = base / "tests/program" / Path(sys.argv[0]).name
    env = dict(os.environ, VELTRANE=program, HOME=str(home), TMPDIR="/tmp", PYTHONDONTWRITEBYTECODE="1")
    env.pop("XDG_CONFIG_HOME", None)
    unshare = ["unshare", "--mount", "--propagation", "private"]
    able = subprocess.run([*unshare, "true"], capture_output=True, check=False).returncode == 0
    prepare = ["sh", "-c", PREPARE, "sh", base, NOBODY, "mounts" if able else "none"]
    test = [sys.executable, script, *sys.argv[1:]]
    return subprocess.run(
        [*(unshare if able else []), *prepare, *test], env=env, cwd=base, check=False
    ).returncode
