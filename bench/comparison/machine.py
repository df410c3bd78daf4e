"""What has to be there before anything is compared, and the facts of the machine that the figures come from."""

import os
import platform
import re
import shutil
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
CACHE = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache") / "veltrane-bench"
PROGRAM = ROOT / "build/release/Veltrane"
BENCH = ROOT / "build/bench/bench"

PACKAGES = (
    "imagemagick graphicsmagick libvips-tools ffmpeg python3-pil python3-numpy nodejs npm "  # the peers
    "libjpeg-turbo-progs libbenchmark-dev libpng-dev libspng-dev"  # the corpus, the bench preset
).split()


def run(*command, **options):
    """The output of a command that must not fail, as text."""
    done = subprocess.run(command, capture_output=True, text=True, check=False, **options)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}: status {done.returncode}\n{done.stderr[-2000:]}")
    return done.stdout


def prepare():
    """Installs the peers and builds the program; quiet and quick when all is there."""
    subprocess.run([ROOT / "tools/setup"], check=True)
    install(PACKAGES)
    for preset, targets in (("release", ["Veltrane"]), ("bench", ["bare_window", "peer_converter", "count_decodes"])):
        run("cmake", "--preset", preset, cwd=ROOT)
        run("cmake", "--build", "--preset", preset, "--target", *targets, cwd=ROOT)
    install_sharp()


def install(packages):
    known = run("dpkg-query", "-W", "-f", "${Package} ${db:Status-Status}\n").splitlines()
    # A node that is no package of Debian brings its own npm.
    missing = [name for name in packages if f"{name} installed" not in known and not shutil.which(name)]
    if missing:
        print("installing", *missing, flush=True)
        environment = dict(os.environ, DEBIAN_FRONTEND="noninteractive")
        command = "apt-get -y -q -o DPkg::Lock::Timeout=300 --no-install-recommends install".split()
        run(*command, *missing, env=environment)


def install_sharp():
    folder = CACHE / "sharp"
    if not (folder / "node_modules/sharp").is_dir():
        folder.mkdir(parents=True, exist_ok=True)
        (folder / "package.json").write_text('{ "private": true }\n')
        wanted = ["sharp"]
        if int(run("node", "--version").lstrip("v").split(".")[0]) < 20:
            wanted.append("node@22")  # what sharp asks for, and Debian 12 is older than
        run("npm", "install", "--no-audit", "--no-fund", *wanted, cwd=folder)


def node():
    """The node that sharp runs on: the one installed beside it, if there is one."""
    own = CACHE / "sharp/node_modules/.bin/node"
    return os.fspath(own) if own.exists() else "node"


def revision(program):
    """The last commit to the sources of the working tree that a program was built in; "+" when they differ."""
    tree = run("git", "rev-parse", "--show-toplevel", cwd=program.parent).strip()
    sources = ("--", ".", ":!bench", ":!docs")
    commit = run("git", "log", "-1", "--format=%h", *sources, cwd=tree).strip()
    return commit + ("+" if run("git", "diff", "HEAD", "--stat", *sources, cwd=tree).strip() else "")


def version_of(*command):
    """The first number with a dot that a command prints about itself."""
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    found = re.search(r"\d+(\.\d+)+(-\d+)?", done.stdout + done.stderr)
    return found[0] if found else "?"


def facts():
    """The machine and the versions, as lines of text."""
    cpuinfo = Path("/proc/cpuinfo").read_text()
    memory = int(re.search(r"MemTotal:\s+(\d+)", Path("/proc/meminfo").read_text())[1]) / (1 << 20)
    model = re.search(r"model name\s*:\s*(.*)", cpuinfo)
    best = next((name for name in ("avx512bw", "avx2", "sse4_2") if f" {name}" in cpuinfo), platform.machine())
    sharp = CACHE / "sharp/node_modules/sharp"
    peers = {
        "sharp": version_of("node", "-p", f"require({os.fspath(sharp)!r}).versions.sharp"),
        "libvips": version_of("vips", "--version"),
        "ffmpeg": version_of("ffmpeg", "-version"),
        "ImageMagick": version_of("convert", "-version"),
        "GraphicsMagick": version_of("gm", "-version"),
        "Pillow": version_of("/usr/bin/python3", "-c", "import PIL; print(PIL.__version__)"),
        "Qt": version_of("qmake6", "-query", "QT_VERSION"),
    }
    release = re.search(r'PRETTY_NAME="(.*)"', Path("/etc/os-release").read_text())[1]
    return [
        f"{model[1].strip() if model else platform.processor()} ({best}), {os.cpu_count()} cores, {memory:.0f} GiB",
        f"{release}, Linux {platform.release().split('-')[0]}, {run('g++', '--version').splitlines()[0]}",
        ", ".join(f"{name} {version}" for name, version in peers.items()),
    ]
