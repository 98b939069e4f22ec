"""What Windows is told about the modules and the tool: their resources, and the C runtime they want."""
import re
import subprocess

MODULES = ("pgkit.dll", "pgview32.dll", "pgtool.exe")


def _told_by(tool, *arguments):
    return subprocess.run([f"x86_64-w64-mingw32-{tool}", *map(str, arguments)], check=True, text=True,
                          stdout=subprocess.PIPE, timeout=60).stdout


def _resources(path):
    return _told_by("windres", "-J", "coff", "-O", "rc", "-i", path)


def check_version_resources(folder, version):
    """Explorer and installers find the version, and whose the file is."""
    numbers = ", ".join(version.split(".") + ["0"])
    for name in MODULES:
        found = _resources(folder / name)
        texts = dict(re.findall(r'VALUE "(\w+)", "([^"]*)"', found))
        expected = {"FileVersion": version, "ProductVersion": version, "ProductName": "pgkit",
                    "OriginalFilename": name, "CompanyName": "the pgkit authors"}
        for key, text in expected.items():
            if texts.get(key) != text:
                return f"{name}: {key} is {texts.get(key)}"
        if f"FILEVERSION {numbers}" not in found:
            return f"{name}: its number is not {numbers}:\n{found[:300]}"
    return None


def check_manifest(folder):
    """The tool's own code page is UTF-8, and its paths may be long."""
    found = _resources(folder / "pgtool.exe")
    wanted = (">UTF-8</activeCodePage>", ">true</longPathAware>", 'level=""asInvoker""')
    missing = [text for text in wanted if text not in found]
    return f"the manifest lacks {missing}" if missing else None


def check_runtime(folder):
    """The universal C runtime, which hosts share with the modules, and no library of the compiler."""
    for name in MODULES:
        imported = re.findall(r"DLL Name: (\S+)", _told_by("objdump", "-p", folder / name))
        if not any(library.lower().startswith("api-ms-win-crt-stdio-") for library in imported):
            return f"{name} has no streams of the universal runtime: {imported}"
        foreign = [library for library in imported
                   if not re.fullmatch(r"api-ms-win-crt-.*|(ADVAPI32|KERNEL32|SHELL32|pgkit|pgview32)\.dll",
                                       library, re.IGNORECASE)]
        if foreign:
            return f"{name} needs {foreign}"
    return None
