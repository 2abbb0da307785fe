"""Each check of the interface files finds what it is for."""

import interface_files
import pytest
from conftest import Sample

XIB = "resources/MainMenu.xib"
HEADER = "app/Sample.h"
OUTLET = '<outlet property="field" destination="Fie-ld-Txt" id="Own-fi-Con"/>'
ACTION = '<action selector="press:" target="-2" id="But-ac-Con"/>'

BREAKS = [
    (XIB, "</document>", "</documen>", "not well-formed: mismatched tag: line 31, column 2"),
    (XIB, 'type="com.apple.InterfaceBuilder3.Cocoa.XIB"', 'type="XIB"',
     "document is not of type com.apple.InterfaceBuilder3.Cocoa.XIB"),
    (XIB, "<buttonCell ", '<buttonCell colour="red" ',
     "<buttonCell id=But-to-Cel>: no attribute colour in the format"),
    (XIB, '<textFieldCell key="cell" id="Fie-ld-Cel"/>', '<textFieldCel key="cell" id="Fie-ld-Cel"/>',
     "<textFieldCel>: no element of the format"),
    (XIB, OUTLET, OUTLET + "<subviews/>", "<subviews> may not be in <connections>"),
    (XIB, 'id="But-to-Cel"', 'id="Fie-ld-Cel"', "id Fie-ld-Cel is used 2 times"),
    (XIB, 'id="But-to-Cel"', 'id="button cell"', "id button cell has not Xcode's form"),
    (XIB, 'destination="Fie-ld-Txt"', 'destination="Fie-ld-Tex"',
     "<outlet>: destination Fie-ld-Tex is not an object of the file"),
    (XIB, 'target="-2"', 'target="But-to-Btn"',
     "action press: of But-to-Btn goes to But-to-Btn, which takes none"),
    (XIB, OUTLET, OUTLET + OUTLET.replace("Own-fi", "Own-f2"),
     "outlet field of Sample is connected 2 times"),
    (XIB, 'destination="Fie-ld-Txt"', 'destination="But-to-Btn"',
     "outlet field is a NSTextField, connected to a NSButton"),
    (XIB, ACTION, ACTION.replace("press:", "pres:"), "Sample declares no action pres:"),
    (XIB, ACTION, "", "action press: of Sample is connected to no control"),
    (XIB, ACTION, ACTION + '<outlet property="formatter" destination="But-to-Cel" id="But-fo-Con"/>',
     "NSButton has no outlet formatter"),
    (XIB, 'releasedWhenClosed="NO"', 'releasedWhenClosed="YES"', "window Sam-pl-Wnd is released when closed"),
    (HEADER, "*field;", "*field;\n  IBOutlet NSTextField *second;",
     "outlet second of Sample is connected 0 times"),
    (HEADER, "*field;", "*fields;", "Sample declares no outlet field"),
    (HEADER, "- (IBAction)press:", "- (void)press:", "Sample declares no action press:"),
    (HEADER, "- (IBAction)press:", "- (IBAction)close:(id)sender;\n- (IBAction)press:",
     "action close: of Sample is connected to no control"),
]


def test_the_sample_as_it_is_has_no_finding(sample: Sample) -> None:
    assert interface_files.check(sample.source) == []


@pytest.mark.parametrize("name, old, new, finding", BREAKS, ids=[b[3] for b in BREAKS])
def test_a_break_is_found(sample: Sample, name: str, old: str, new: str, finding: str) -> None:
    sample.replace(name, old, new)
    assert f"MainMenu.xib: {finding}" in interface_files.check(sample.source)


def test_a_class_with_outlets_but_without_an_interface_file_is_found(sample: Sample) -> None:
    sample.replace(XIB, 'customClass="Sample"', 'customClass="NSObject"')
    assert "Sample: declares outlets or actions, but owns no interface file" in \
        interface_files.check(sample.source)
