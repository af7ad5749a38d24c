"""An emulated device: started, given commands, and photographed from outside."""

import json
import shutil
import socket
import subprocess
import tempfile
import time
from pathlib import Path

from PIL import Image

PROJECT = Path(__file__).resolve().parents[2]

# Drivers by the bus of the virtual devices.
COMMON_DRIVERS = "virtio_console,virtio_blk,crc32c_generic,ext4,9pnet_virtio,9p"

MACHINES = {
    # A display of 32 bits a pixel, with fbdev and KMS. The kernel knows no addresses
    # above 4 GiB, and its display driver no virtual devices of the old kind.
    "virtio": {
        "image": "arm",
        "programs": "arm",
        "qemu": "qemu-system-arm -M virt,highmem=off -cpu cortex-a15"
        " -global virtio-mmio.force-legacy=false"
        " -device virtio-gpu-device,xres={width},yres={height}",
        "bus": "device",
        "kernel": "console=ttyAMA0",
        "drivers": f"virtio_mmio,{COMMON_DRIVERS},virtio-gpu",
    },
    # PCs that have cards only: one of 32 bits, with a touch screen and a keyboard, and one of 16
    # bits.
    "pc": {
        "image": "amd64",
        "programs": "device/programs-amd64",
        "qemu": "qemu-system-x86_64 -M q35 -cpu max,avx2=off -vga none"
        " -device virtio-gpu-pci,xres={width},yres={height}"
        " -device virtio-tablet-pci -device virtio-keyboard-pci",
        "bus": "pci",
        "kernel": "console=ttyS0",
        "drivers": f"virtio_pci,{COMMON_DRIVERS},virtio-gpu,virtio_input,evdev",
    },
    "cirrus": {
        "image": "amd64",
        "programs": "device/programs-amd64",
        "qemu": "qemu-system-x86_64 -M q35 -cpu max,avx2=off -vga cirrus",
        "bus": "pci",
        "kernel": "console=ttyS0",
        "drivers": f"virtio_pci,{COMMON_DRIVERS},cirrus",
    },
    # A display in memory with vertical blanks. make-vkms builds its driver.
    "vkms": {
        "image": "amd64",
        "programs": "device/programs-amd64",
        "qemu": "qemu-system-x86_64 -M q35 -cpu max,avx2=off -vga none",
        "bus": "pci",
        "kernel": "console=ttyS0",
        "drivers": f"virtio_pci,{COMMON_DRIVERS},vkms",
    },
    # A controller that scans out main memory, 800x480, RGB565, fbdev alone.
    "board": {
        "image": "arm",
        "programs": "arm",
        "qemu": "qemu-system-arm -M vexpress-a9 -dtb {image}/board.dtb",
        "bus": "device",
        "kernel": "console=ttyAMA0",
        "drivers": f"virtio_mmio,{COMMON_DRIVERS}",
    },
    # A frame buffer in memory, without a display. Red is in the lowest bits, and it starts with 8
    # bits. QEMU 7.2 computes some AVX2 instructions wrongly.
    "memory": {
        "image": "amd64",
        "programs": "device/programs-amd64",
        "qemu": "qemu-system-x86_64 -M q35 -cpu max,avx2=off -vga none",
        "bus": "pci",
        "kernel": "console=ttyS0 vfb.vfb_enable=1 vfb.videomemorysize=16777216",
        "drivers": f"virtio_pci,{COMMON_DRIVERS},vfb",
    },
}

# Stops movement on the console, and skips slow steps of the kernel's start.
KERNEL_WORDS = (
    "quiet panic=-1 vt.global_cursor_default=0 consoleblank=0 logo.nologo"
    " cryptomgr.notests init_on_alloc=0 lsm= mitigations=off"
)


class Failure(Exception):
    pass


class Machine:
    """Use with `with`; the guest runs one shell, which reads commands from `run`. The size is that
    of the display, where it can be chosen."""

    def __init__(self, name, log, size):
        kind = MACHINES[name]
        self.programs = PROJECT / "build" / kind["programs"] / "bin"
        image = PROJECT / "build/device" / kind["image"]
        self.folder = Path(tempfile.mkdtemp())
        self.log = open(log, "w")
        words = f"{kind['kernel']} {KERNEL_WORDS} zirk.modules={kind['drivers']}"
        bus = kind["bus"]
        width, height = size
        command = kind["qemu"].format(image=image, width=width, height=height)
        # Without KVM: guests of another architecture cannot use it, and nested ones may hang.
        command = command.split() + [
            *"-accel tcg -m 1024 -nodefaults -nic none -display none -no-reboot".split(),
            *f"-kernel {image}/kernel -initrd {image}/initrd".split(),
            *["-append", f"{words} zirk.project={PROJECT}"],
            *f"-serial file:{self.folder}/console".split(),
            *f"-qmp unix:{self.folder}/monitor,server=on,wait=off".split(),
            *f"-drive if=none,id=disk,file={image}/disk,format=raw,snapshot=on".split(),
            *f"-device virtio-blk-{bus},drive=disk".split(),
            *["-fsdev", f"local,id=project,path={PROJECT},security_model=none,readonly=on"],
            *f"-device virtio-9p-{bus},fsdev=project,mount_tag=project".split(),
            *f"-device virtio-serial-{bus}".split(),
            *f"-chardev socket,id=shell,path={self.folder}/shell,server=on,wait=off".split(),
            *"-device virtserialport,chardev=shell,name=shell".split(),
        ]
        self.qemu = subprocess.Popen(command, stdin=subprocess.DEVNULL, stderr=self.log)

    def __enter__(self):
        try:
            self.monitor = self.connect("monitor")
            self.monitor.readline()
            self.ask("qmp_capabilities")
            self.shell = self.connect("shell")
            self.run("true")
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        self.qemu.kill()
        self.qemu.wait()
        console = self.folder / "console"
        if console.exists():
            self.log.write(console.read_text(errors="replace"))
        self.log.close()
        shutil.rmtree(self.folder)

    def connect(self, name):
        link = socket.socket(socket.AF_UNIX)
        for _ in range(100):
            try:
                link.connect(f"{self.folder}/{name}")
                break
            except OSError:
                time.sleep(0.1)
        else:
            raise Failure(f"QEMU offers no {name}")
        link.settimeout(600)
        return link.makefile("rw", errors="replace")

    def ask(self, command, **arguments):
        print(json.dumps({"execute": command, "arguments": arguments}), file=self.monitor, flush=True)
        while True:
            answer = json.loads(self.monitor.readline())
            if "error" in answer:
                raise Failure(answer["error"]["desc"])
            if "return" in answer:
                return

    def run(self, command, until="STATUS 0"):
        """What the command prints, up to the line that starts with `until`. A line "ENDED" and a
        status tells of a command in the background."""
        print(f"{command}; echo STATUS $?", file=self.shell, flush=True)
        lines = []
        while True:
            try:
                line = self.shell.readline()
            except OSError as error:
                raise Failure(f"{command}: {error}") from None
            self.log.write(line)
            self.log.flush()
            if line.startswith(until):
                return "".join(lines)
            ended = line.startswith(("STATUS", "ENDED")) and not line.endswith(" 0\n")
            if ended or not line:
                why = line.strip() or "the machine stopped"
                raise Failure(f"{command}: {why}\n{''.join(lines)}")
            lines.append(line)

    def input(self, kind, **data):
        """Has a device report what a user does."""
        self.ask("input-send-event", events=[{"type": kind, "data": data}])
        time.sleep(0.1)

    def screen(self, settle=1.0):
        """The display's picture. A driver may look for what has been drawn only now and then."""
        time.sleep(settle)
        path = self.folder / "screen.ppm"
        self.ask("screendump", filename=str(path))
        with Image.open(path) as picture:
            return picture.convert("RGB")
