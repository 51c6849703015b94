#!/usr/bin/env python3
"""Compiles the C# binding with Mono's compiler and makes its NuGet package.

Usage: nupkg.py VERSION LIBRARY LICENSES NUPKG

LIBRARY is quenra.dll for Windows, LICENSES a folder with the licences of the code that it contains. The
package depends on these, the sources and the version only: the compiler derives the assembly's identity
from its content, and the archive has no dates. One file with the complete binding is written beside the
package: its name is that of NUPKG with `.cs` in place of `.nupkg`.
"""

import pathlib
import subprocess
import sys
import tempfile

import archive

SOURCES = pathlib.Path(__file__).resolve().parents[1] / "bindings/csharp"
# Not Quenra.dll: beside quenra.dll, names that differ in case only are one file on Windows.
ASSEMBLY = "Quenra.Net"

ASSEMBLY_INFORMATION = """\
using System.Reflection;
using System.Runtime.Versioning;
[assembly: AssemblyTitle("Quenra")]
[assembly: AssemblyDescription("The C# binding of quenra.dll")]
[assembly: AssemblyVersion("{version}.0")]
[assembly: AssemblyFileVersion("{version}.0")]
[assembly: AssemblyInformationalVersion("{version}")]
[assembly: TargetFramework(".NETStandard,Version=v2.0", FrameworkDisplayName = ".NET Standard 2.0")]
"""

MANIFEST = """\
<?xml version="1.0" encoding="utf-8"?>
<package xmlns="http://schemas.microsoft.com/packaging/2013/05/nuspec.xsd">
  <metadata minClientVersion="2.12">
    <id>Quenra</id>
    <version>{version}</version>
    <title>Quenra</title>
    <authors>quenra</authors>
    <requireLicenseAcceptance>false</requireLicenseAcceptance>
    <description>The controller of a PXI chassis: attributes, firmware updates and trigger routes. The C# binding, with quenra.dll for 64-bit Windows.</description>
    <tags>PXI controller trigger firmware native</tags>
    <dependencies>
      <group targetFramework=".NETFramework4.6.1" />
      <group targetFramework=".NETStandard2.0" />
    </dependencies>
  </metadata>
</package>
"""

# .NET finds quenra.dll in runtimes/ by itself; projects of .NET Framework copy it by these targets.
TARGETS = """\
<?xml version="1.0" encoding="utf-8"?>
<Project xmlns="http://schemas.microsoft.com/developer/msbuild/2003">
  <ItemGroup>
    <None Include="$(MSBuildThisFileDirectory)../../runtimes/win-x64/native/quenra.dll">
      <Link>quenra.dll</Link>
      <CopyToOutputDirectory>PreserveNewest</CopyToOutputDirectory>
      <Visible>false</Visible>
    </None>
  </ItemGroup>
  <Target Name="QuenraRequire64Bit" BeforeTargets="Build"
          Condition="'$(OutputType)' != 'Library' And '$(PlatformTarget)' != 'x64'
                     And ('$(PlatformTarget)' == 'x86' Or '$(Prefer32Bit)' == 'true')">
    <Warning Text="quenra.dll is a 64-bit library, and this program starts as a 32-bit process. Set PlatformTarget to x64 in the project." />
  </Target>
</Project>
"""

CONTENT_TYPES = """\
<?xml version="1.0" encoding="utf-8"?>
<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">
  <Default Extension="dll" ContentType="application/octet" />
  <Default Extension="nuspec" ContentType="application/octet" />
  <Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml" />
  <Default Extension="targets" ContentType="application/octet" />
  <Default Extension="txt" ContentType="text/plain" />
  <Default Extension="xml" ContentType="application/octet" />
</Types>
"""

RELATIONSHIPS = """\
<?xml version="1.0" encoding="utf-8"?>
<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">
  <Relationship Type="http://schemas.microsoft.com/packaging/2010/07/manifest" Target="/Quenra.nuspec" Id="R1" />
</Relationships>
"""


def single_source():
    """Both sources in one: the one that begins with directives comes first."""
    return b"\n".join((SOURCES / name).read_bytes() for name in ("Constants.cs", "Quenra.cs"))


def compile_binding(version, source):
    """Returns the assembly and its documentation."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "Quenra.cs").write_bytes(source)
        (folder / "Information.cs").write_text(ASSEMBLY_INFORMATION.format(version=version), "utf-8")
        subprocess.run(["mcs", "-deterministic", "-noconfig", "-target:library", "-langversion:7.2", "-optimize",
                        "-warnaserror", f"-out:{ASSEMBLY}.dll", f"-doc:{ASSEMBLY}.xml",
                        "Quenra.cs", "Information.cs"], cwd=folder, check=True)
        return ((folder / f"{ASSEMBLY}.dll").read_bytes(),
                (folder / f"{ASSEMBLY}.xml").read_bytes())


def make(version, library, licenses, package):
    source = single_source()
    assembly, documentation = compile_binding(version, source)
    archive.write(package, [
        ("[Content_Types].xml", CONTENT_TYPES),
        ("_rels/.rels", RELATIONSHIPS),
        ("Quenra.nuspec", MANIFEST.format(version=version)),
        ("build/net461/Quenra.targets", TARGETS),
        ("buildTransitive/net461/Quenra.targets", TARGETS),
        (f"lib/netstandard2.0/{ASSEMBLY}.dll", assembly),
        (f"lib/netstandard2.0/{ASSEMBLY}.xml", documentation),
        *((f"licenses/{path.name}", path.read_bytes()) for path in sorted(licenses.glob("*.txt"))),
        ("runtimes/win-x64/native/quenra.dll", library.read_bytes()),
    ])
    package.with_suffix(".cs").write_bytes(source)


if __name__ == "__main__":
    if len(sys.argv) != 5:
        raise SystemExit("usage: nupkg.py VERSION LIBRARY LICENSES NUPKG")
    make(sys.argv[1], *map(pathlib.Path, sys.argv[2:]))
