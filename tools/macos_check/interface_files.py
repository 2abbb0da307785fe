"""Checks that the interface files have Xcode's form and fit the classes that own them."""

import re
import xml.etree.ElementTree as ElementTree
from collections import Counter
from dataclasses import dataclass, field
from pathlib import Path

import api

FORMAT = Path(__file__).with_name("interface_format.tsv")
OWNER = "-2"
FIRST_RESPONDER = "-1"
# Attributes that name another object of the file.
REFERENCES = {"destination", "target", "selectedItem"}


@dataclass(frozen=True)
class Element:
    """What the format says of an element."""

    parents: frozenset[str]
    attributes: frozenset[str]
    object_class: str
    outlets: frozenset[str]


@dataclass
class Class:
    """What the headers declare of a class, categories included."""

    superclass: str = ""
    outlets: dict[str, str] = field(default_factory=dict)  # name -> class of the control
    methods: set[str] = field(default_factory=set)
    actions: set[str] = field(default_factory=set)


def read_format() -> dict[str, Element]:
    def words(text: str) -> frozenset[str]:
        return frozenset(() if text == "-" else text.split())

    elements = {}
    for line in FORMAT.read_text(encoding="utf-8").splitlines():
        if line and not line.startswith("#"):
            name, parents, attributes, kind, outlets = line.split("\t")
            elements[name] = Element(words(parents), words(attributes), kind, words(outlets))
    return elements


def read_headers(source: Path) -> dict[str, Class]:
    """The classes that the program's headers declare."""
    classes: dict[str, Class] = {}
    for path in sorted(Path(source).glob("*/*.h")):
        text = re.sub(r"//.*", "", path.read_text(encoding="utf-8"))
        for block in re.findall(r"^@interface\s.*?^@end", text, re.DOTALL | re.MULTILINE):
            name, superclass = re.findall(r"^@interface\s+(\w+)\s*(?::\s*(\w+))?", block)[0]
            found = classes.setdefault(name, Class())
            found.superclass = superclass or found.superclass
            for control, outlet in re.findall(r"IBOutlet\s+(\w+)\s*\*\s*(\w+)", block):
                found.outlets[outlet] = control
            for method in re.findall(r"^[-+]\s*\([^;]*;", block, re.MULTILINE):
                found.methods.add(api.selector(method))
                if "IBAction" in method:
                    found.actions.add(api.selector(method))
    return classes


def superclasses() -> dict[str, str]:
    """Class -> superclass, of the system's classes that the list of API names."""
    pairs = (re.match(r"@interface (\w+) : (\w+)", r.declaration) for r in api.read())
    return {m.group(1): m.group(2) for m in pairs if m}


class InterfaceFile:
    """One file, what is wrong with it, and the class that owns it ("" when it cannot be read)."""

    def __init__(self, path: Path, classes: dict[str, Class]) -> None:
        self.path, self.classes = path, classes
        self.format, self.parents = read_format(), superclasses()
        self.findings: list[str] = []
        self.owner = ""
        try:
            self.root = ElementTree.parse(path).getroot()
        except ElementTree.ParseError as error:
            self.say(f"not well-formed: {error}")
            return
        self.objects = {e.get("id"): e for e in self.root.iter() if e.get("id")}
        self.owner = self.class_of(self.objects.get(OWNER))
        for check in (self.check_form, self.check_ids, self.check_references, self.check_outlets,
                      self.check_actions, self.check_windows):
            check()

    def say(self, text: str) -> None:
        self.findings.append(f"{self.path.name}: {text}")

    def class_of(self, element: ElementTree.Element | None) -> str:
        if element is None:
            return ""
        known = self.format.get(element.tag)
        return element.get("customClass") or (known.object_class if known else "")

    def is_a(self, name: str, wanted: str) -> bool:
        while name and name != wanted:
            name = self.parents.get(name) or self.classes.get(name, Class()).superclass
        return name == wanted

    def check_form(self) -> None:
        if self.root.get("type") != "com.apple.InterfaceBuilder3.Cocoa.XIB":
            self.say("document is not of type com.apple.InterfaceBuilder3.Cocoa.XIB")
        for parent in self.root.iter():
            known = self.format.get(parent.tag)
            if known is None:
                self.say(f"<{parent.tag}>: no element of the format")
                continue
            for name in sorted(set(parent.attrib) - known.attributes):
                self.say(f"<{parent.tag} id={parent.get('id')}>: no attribute {name} in the format")
            for child in parent:
                if child.tag in self.format and parent.tag not in self.format[child.tag].parents:
                    self.say(f"<{child.tag}> may not be in <{parent.tag}>")

    def check_ids(self) -> None:
        ids = Counter(e.attrib["id"] for e in self.root.iter() if e.get("id"))
        for name, times in ids.items():
            if times > 1:
                self.say(f"id {name} is used {times} times")
            if not re.fullmatch(r"-[123]|\w{3}-\w{2}-\w{3}", name):
                self.say(f"id {name} has not Xcode's form")

    def check_references(self) -> None:
        for element in self.root.iter():
            for name in sorted(REFERENCES & set(element.attrib)):
                if (other := element.get(name)) not in self.objects:
                    self.say(f"<{element.tag}>: {name} {other} is not an object of the file")

    def connections(self, tag: str) -> list[tuple[ElementTree.Element, ElementTree.Element]]:
        """(object, its connection) of every connection of that kind."""
        return [(holder, connection) for holder in self.root.iter()
                for connection in holder.findall(f"connections/{tag}")]

    def check_outlets(self) -> None:
        declared = dict(self.classes.get(self.owner, Class()).outlets)
        if self.is_a(self.owner, "NSWindowController"):
            declared["window"] = "NSWindow"
        connected: Counter[str] = Counter()
        for holder, outlet in self.connections("outlet"):
            name = outlet.get("property", "")
            target = self.objects.get(outlet.get("destination"))
            if holder.get("id") != OWNER:
                if name not in self.format[holder.tag].outlets:
                    self.say(f"{self.class_of(holder)} has no outlet {name}")
                continue
            connected[name] += 1
            if name not in declared:
                self.say(f"{self.owner} declares no outlet {name}")
            elif target is not None and not self.is_a(self.class_of(target), declared[name]):
                other = self.class_of(target)
                self.say(f"outlet {name} is a {declared[name]}, connected to a {other}")
        for name in sorted(declared):
            if connected[name] != 1:
                self.say(f"outlet {name} of {self.owner} is connected {connected[name]} times")

    def check_actions(self) -> None:
        declared = self.classes.get(self.owner, Class()).actions
        connected: set[str] = set()
        for holder, action in self.connections("action"):
            selector, target = action.get("selector", ""), action.get("target")
            if target == OWNER and selector not in declared:
                self.say(f"{self.owner} declares no action {selector}")
            elif target not in (OWNER, FIRST_RESPONDER):
                sender = holder.get("id")
                self.say(f"action {selector} of {sender} goes to {target}, which takes none")
            connected.add(selector)
        for selector in sorted(declared - connected):
            self.say(f"action {selector} of {self.owner} is connected to no control")

    def check_windows(self) -> None:
        for window in self.root.iter("window"):
            # By default a window is released when closed, and its owner would hold a dead one.
            if window.get("releasedWhenClosed") != "NO":
                self.say(f"window {window.get('id')} is released when closed")


def check(source: Path) -> list[str]:
    """The findings in all interface files below <source>/resources."""
    source = Path(source)
    classes, findings, owners = read_headers(source), [], set()
    for path in sorted((source / "resources").glob("*.xib")):
        file = InterfaceFile(path, classes)
        findings += file.findings
        owners.add(file.owner)
    if "" in owners:
        return findings
    for name, found in classes.items():
        if (found.outlets or found.actions) and name not in owners:
            findings.append(f"{name}: declares outlets or actions, but owns no interface file")
    return findings
