"""Each check of the cross-build fails when it should, and only then.

One sample is broken in every way that the compiler refuses, another in every way that shows only in what
is linked; each is built once."""

from collections.abc import Sequence
from dataclasses import dataclass, field

import api
import pytest
from conftest import ROOT, Sample

CODE, BUILD = "app/Sample.mm", "CMakeLists.txt"
PRESSED = '  [field setStringValue:@"pressed"];\n'
PRESS = "- (IBAction)press:(id)sender {\n"
CLASS = "@implementation Sample\n"
LAST_ROW = "AppKit\t10.0\t-\textern int NSApplicationMain(int argc, const char *argv[]);\n"
OTHER_LIBRARY = f"""--- !tapi-tbd
tbd-version: 4
targets: {api.TARGETS}
install-name: '/usr/local/lib/libother.dylib'
exports:
  - targets: {api.TARGETS}
    symbols: [ '_other' ]
...
"""


@dataclass(frozen=True)
class Break:
    """A change of the sample, and part of each finding that it must lead to, as often as given."""

    name: str
    finds: dict[str, int]
    statement: str = ""  # of the method that a press of the button calls
    declaration: str = ""
    rows: Sequence[tuple[str, ...]] = ()
    edits: Sequence[tuple[str, str, str]] = field(default=())  # file, old text, new text


REFUSED = [
    Break("a method that only the development system has",
          {"instance method '-stringByTrimmingSpaces' not found": 1},
          '[field setStringValue:[@" x" stringByTrimmingSpaces]];'),
    Break("a method newer than the minimum system",
          {"'setNewStyle:' is only available on macOS 13.0 or newer": 1},
          "[field setNewStyle:YES];",
          rows=[("AppKit", "13.0", "-", "@interface NSTextField (New)"),
                ("AppKit", "13.0", "-", "- (void)setNewStyle:(BOOL)style;")]),
    Break("a constant newer than the minimum system",
          {"'NSNewName' is only available on macOS 12.0 or newer": 1},
          "[field setStringValue:NSNewName];",
          rows=[("AppKit", "12.0", "-", "extern NSString *const NSNewName;")]),
    Break("a deprecated method", {"'setOldStyle:' is deprecated": 1}, "[field setOldStyle:YES];",
          rows=[("AppKit", "10.0", "-", "@interface NSTextField (Old)"),
                ("AppKit", "10.0", "10.8", "- (void)setOldStyle:(BOOL)style;")]),
    Break("a null argument where the row does not take one",
          {"null passed to a callee that requires a non-null argument": 1},
          "[field setStringValue:nil];"),
    Break("an argument of another type than the row takes",
          {"parameter of type 'int' with an": 1}, '[field setTint:@"red"];',
          rows=[("AppKit", "10.0", "-", "@interface NSTextField (Tint)"),
                ("AppKit", "10.0", "-", "- (void)setTint:(int)tint;")]),
    Break("a method of another class", {"'NSApplication' may not respond to 'setStringValue:'": 1},
          '[[NSApplication sharedApplication] setStringValue:@""];'),
]

LINKED = [
    Break("a method that the compiler is talked into", {"trimSpaces is sent, but not listed": 1},
          "[(id<Trimming>)field trimSpaces];", "@protocol Trimming\n- (void)trimSpaces;\n@end"),
    Break("a function newer than the minimum system", {"_getpid came with macOS 12.0": 2},
          'if (getpid() == 0) [field setStringValue:@""];', "#include <unistd.h>",
          rows=[("libSystem", "12.0", "-", "getpid")]),
    Break("a function that is not listed", {"_getuid is not listed": 2},
          'if (getuid() == 0) [field setStringValue:@""];'),
    Break("a function that libSystem lacks",
          {"libSystem has no getnothing": 1, "libSystem: nothing uses getnothing": 1},
          rows=[("libSystem", "10.0", "-", "getnothing")]),
    Break("what only the tests may call", {"retainCount is sent, but not listed": 1},
          "if ([field retainCount] == 0) return;"),
    Break("a test that does not compile", {"tests/sample_test.mm": 1},
          edits=[("tests/sample_test.mm", "[sample press:sample]", "[sample pres:sample]")]),
    Break("another library", {"loads /usr/local/lib/libother.dylib": 2, "_other is not listed": 2},
          "other();", 'extern "C" void other();',
          edits=[(BUILD, "add_subdirectory(tests)\n",
                  "add_subdirectory(tests)\ntarget_link_libraries(sample PRIVATE "
                  '"${CMAKE_CURRENT_SOURCE_DIR}/libother.tbd")\n')]),
    Break("a tool with windows", {"configure-agent (arm64): loads AppKit": 1,
                                  "configure-agent (x86_64): loads AppKit": 1},
          edits=[(BUILD, "platform_add_tool(",
                  "target_link_libraries(tool PRIVATE platform_api)\nplatform_add_tool(")]),
    Break("a minimum system other than the stated one", {"built for 11.0, stated 10.15": 4},
          edits=[(BUILD, 'bundle.cmake")\n', 'bundle.cmake")\nset(MAC_MINIMUM_SYSTEM 10.15)\n')]),
    Break("a method that nobody calls", {"Sample has pressTwice, which nobody calls": 1},
          edits=[(CODE, PRESS, "- (void)pressTwice {\n}\n\n" + PRESS)]),
    Break("a name of the development system", {"MacOS/Zentavo Configuration Utility: holds GNUstep": 1},
          '[field setStringValue:@"in GNUstep"];'),
    Break("rows that nothing uses", {"nothing uses extern void NSBeep(void);": 1,
                                     "nothing uses static inline int NSTwice(int n)": 1,
                                     "nothing uses static const int NSOne": 1},
          rows=[("AppKit", "10.0", "-", "extern void NSBeep(void);"),
                ("AppKit", "-", "-", "static inline int NSTwice(int n) { return 2 * n; }"),
                ("AppKit", "-", "-", "static const int NSOne = 1;")]),
    Break("a used function of a header alone is taken", {}, "if (NSHalf(argument) == 1) return;",
          "static const int argument = 4;",
          rows=[("AppKit", "-", "-", "static inline int NSHalf(int n) { return n / 2; }")]),
    Break("a finding in an interface file", {"outlet second of Sample is connected 0 times": 1},
          edits=[("app/Sample.h", "*field;", "*field;\n  IBOutlet NSTextField *second;")]),
    Break("a finding in the files of a bundle", {"lacks Resources/configure-agent.1": 1},
          edits=[(BUILD, " cli/configure-agent.1", "")]),
]


def found_in(name: str, breaks: Sequence[Break]) -> list[str]:
    """The findings in a sample with all these changes."""
    sample = Sample(ROOT / "build/macos/self-test" / name)
    (sample.source / "libother.tbd").write_text(OTHER_LIBRARY)
    declarations = "".join(f"{b.declaration}\n\n" for b in breaks if b.declaration)
    statements = "".join(f"  {b.statement}\n" for b in breaks if b.statement)
    rows = "".join("\t".join(row) + "\n" for b in breaks for row in b.rows)
    sample.replace(CODE, CLASS, declarations + CLASS)
    sample.replace(CODE, PRESSED, PRESSED + statements)
    sample.replace("api.tsv", LAST_ROW, LAST_ROW + rows)
    for change in breaks:
        for edit in change.edits:
            sample.replace(*edit)
    return sample.findings()


@pytest.fixture(scope="module")
def refused() -> list[str]:
    return found_in("refused", REFUSED)


@pytest.fixture(scope="module")
def linked() -> list[str]:
    return found_in("linked", LINKED)


def times(part: str, findings: Sequence[str]) -> int:
    return sum(part in finding for finding in findings)


def unexpected(findings: Sequence[str], breaks: Sequence[Break]) -> list[str]:
    return [f for f in findings if not any(part in f for b in breaks for part in b.finds)]


def test_the_sample_as_it_is_passes(sample: Sample) -> None:
    assert sample.first_findings == []


@pytest.mark.parametrize("change", REFUSED, ids=[b.name for b in REFUSED])
def test_the_compiler_refuses(refused: list[str], change: Break) -> None:
    assert {part: times(part, refused) for part in change.finds} == change.finds, refused


@pytest.mark.parametrize("change", LINKED, ids=[b.name for b in LINKED])
def test_the_checks_find(linked: list[str], change: Break) -> None:
    assert {part: times(part, linked) for part in change.finds} == change.finds, linked


def test_nothing_else_is_found(refused: list[str], linked: list[str]) -> None:
    assert unexpected(refused, REFUSED) + unexpected(linked, LINKED) == []
