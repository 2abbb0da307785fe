"""Each check of the cross-build fails when it should, and only then."""

import api
from conftest import Sample

CODE = "app/Sample.mm"
PRESSED = '  [field setStringValue:@"pressed"];\n'
NEW_METHOD = ("AppKit", "13.0", "-", "@interface NSTextField (New)"), \
             ("AppKit", "13.0", "-", "- (void)setNewStyle:(BOOL)style;")


def test_the_sample_as_it_is_passes(sample: Sample) -> None:
    assert sample.findings() == []


def test_a_method_that_only_the_development_system_has_is_refused(sample: Sample) -> None:
    sample.replace(CODE, PRESSED, '  [field setStringValue:[@" x" stringByTrimmingSpaces]];\n')
    assert any("stringByTrimmingSpaces" in f for f in sample.findings())


def test_a_method_that_the_compiler_is_talked_into_is_found_in_the_linked_file(sample: Sample) -> None:
    sample.replace(CODE, "@implementation Sample",
                   "@protocol Trimming\n- (void)trimSpaces;\n@end\n\n@implementation Sample")
    sample.replace(CODE, PRESSED, "  [(id<Trimming>)field trimSpaces];\n" + PRESSED)
    assert sample.findings() == ["trimSpaces is sent, but not listed"]


def test_a_method_newer_than_the_minimum_system_is_refused_without_a_guard(sample: Sample) -> None:
    sample.add_rows(*NEW_METHOD)
    sample.replace(CODE, PRESSED, "  [field setNewStyle:YES];\n" + PRESSED)
    found = sample.findings()
    assert found and all("'setNewStyle:' is only available on macOS 13.0 or newer" in f for f in found)


def test_a_method_newer_than_the_minimum_system_is_taken_with_a_guard(sample: Sample) -> None:
    sample.add_rows(*NEW_METHOD, ("libSystem", "10.15", "-", "_availability_version_check"))
    sample.replace(CODE, PRESSED, "  if (@available(macOS 13.0, *)) [field setNewStyle:YES];\n" + PRESSED)
    assert sample.findings() == []


def test_a_constant_newer_than_the_minimum_system_is_refused_without_a_guard(sample: Sample) -> None:
    sample.add_rows(("AppKit", "12.0", "-", "extern NSString *const NSNewName;"))
    sample.replace(CODE, '@"pressed"', "NSNewName")
    assert any("'NSNewName' is only available on macOS 12.0 or newer" in f for f in sample.findings())


def test_a_function_newer_than_the_minimum_system_is_found_in_the_linked_file(sample: Sample) -> None:
    sample.add_rows(("libSystem", "12.0", "-", "getpid"))
    sample.replace(CODE, '#include "app', '#include <unistd.h>\n\n#include "app')
    sample.replace(CODE, PRESSED, PRESSED + "  if (getpid() == 0) [field setStringValue:@\"\"];\n")
    found = sample.findings()
    assert len(found) == 2 and all(f.endswith("_getpid came with macOS 12.0") for f in found)


def test_a_function_that_is_not_listed_is_found_in_the_linked_file(sample: Sample) -> None:
    sample.replace(CODE, '#include "app', '#include <unistd.h>\n\n#include "app')
    sample.replace(CODE, PRESSED, PRESSED + "  if (getuid() == 0) [field setStringValue:@\"\"];\n")
    found = sample.findings()
    assert len(found) == 2 and all(f.endswith("_getuid is not listed") for f in found)


def test_a_deprecated_method_is_refused(sample: Sample) -> None:
    sample.replace("api.tsv", "AppKit\t10.0\t-\t- (void)setStringValue",
                   "AppKit\t10.0\t10.8\t- (void)setStringValue")
    assert any("'setStringValue:' is deprecated" in f for f in sample.findings())


def test_a_null_argument_is_refused_where_the_row_does_not_take_one(sample: Sample) -> None:
    sample.replace(CODE, '@"pressed"', "nil")
    assert any("null passed to a callee that requires a non-null argument" in f
               for f in sample.findings())


def test_a_method_of_another_class_is_refused(sample: Sample) -> None:
    sample.replace(CODE, PRESSED, "  [[NSApplication sharedApplication] setStringValue:@\"\"];\n")
    assert any("'NSApplication' may not respond to" in f or "not found" in f for f in sample.findings())


def test_a_test_that_does_not_compile_for_macos_is_found(sample: Sample) -> None:
    sample.replace("tests/sample_test.mm", "[sample press:sample]", "[sample pres:sample]")
    found = sample.findings()
    assert found and all("tests/sample_test.mm" in f for f in found)


def test_an_interface_that_only_tests_use_is_unknown_to_the_program(sample: Sample) -> None:
    sample.replace(CODE, PRESSED, PRESSED + "  if ([field retainCount] == 0) return;\n")
    assert sample.findings() == ["retainCount is sent, but not listed"]


def test_a_other_library_is_refused(sample: Sample) -> None:
    stub = sample.source / "libother.tbd"
    stub.write_text("--- !tapi-tbd\ntbd-version: 4\n"
                    f"targets: {api.TARGETS}\ninstall-name: '/usr/local/lib/libother.dylib'\n"
                    f"exports:\n  - targets: {api.TARGETS}\n    symbols: [ '_other' ]\n...\n")
    sample.replace("CMakeLists.txt", "target_compile_options(",
                   'target_link_libraries(sample PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/libother.tbd")\n'
                   "target_compile_options(")
    sample.replace(CODE, "@implementation Sample", 'extern "C" void other();\n\n@implementation Sample')
    sample.replace(CODE, PRESSED, PRESSED + "  other();\n")
    found = sample.findings()
    assert sum(f.endswith("loads /usr/local/lib/libother.dylib") for f in found) == 2
    assert sum(f.endswith("_other is not listed") for f in found) == 2


def test_a_minimum_system_other_than_the_stated_one_is_found(sample: Sample) -> None:
    sample.findings()
    plist = next((sample.build / "arm64/apps").glob("*.app")) / "Contents/Info.plist"
    sample.replace(plist, "<string>11.0</string>", "<string>10.15</string>")
    assert [f.partition(": ")[2] for f in sample.findings()] == ["built for 11.0, stated 10.15"] * 2


def test_a_method_that_nobody_calls_is_found(sample: Sample) -> None:
    sample.replace(CODE, "- (void)applicationDidFinishLaunching:", "- (void)applicationDidFinishLaunchin:")
    assert "Sample has applicationDidFinishLaunchin:, which nobody calls" in sample.findings()


def test_a_name_of_the_development_system_is_found(sample: Sample) -> None:
    sample.replace(CODE, '@"pressed"', '@"pressed in GNUstep"')
    assert sample.findings() == [
        "Zentavo Configuration Utility.app/Contents/MacOS/Zentavo Configuration Utility: holds GNUstep"]


def test_another_edition_in_the_bundle_is_found(sample: Sample) -> None:
    sample.replace("CMakeLists.txt", 'BUILD_OEM=\\"Zentavo\\"', 'BUILD_OEM=\\"Fennrow\\"')
    found = sample.findings()
    assert len(found) == 2 and all(f.endswith("oem is Fennrow") for f in found)


def test_a_row_that_nothing_uses_is_found(sample: Sample) -> None:
    sample.add_rows(("AppKit", "10.0", "-", "extern void NSBeep(void);"))
    assert sample.findings() == ["AppKit: nothing uses extern void NSBeep(void);"]


def test_a_finding_in_an_interface_file_fails_the_whole(sample: Sample) -> None:
    sample.replace("app/Sample.h", "*field;", "*otherField;")
    sample.replace(CODE, "[field setHighlighted", "[otherField setHighlighted")
    sample.replace(CODE, "[field setString", "[otherField setString")
    assert sample.findings() == ["MainMenu.xib: Sample declares no outlet field",
                                 "MainMenu.xib: outlet otherField of Sample is connected 0 times"]
