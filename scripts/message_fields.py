"""The page docs/message-fields.md, written from docs/messages.schema.json.

    message_fields.py DOCS    writes the page anew; the tests fail where it is not what the schema makes of it
"""
import json
import os
import re
import sys

HEADER = """# Fields of the messages

Written by `scripts/message_fields.py` from [messages.schema.json](messages.schema.json), against which the tests
hold what the program sends; [messages.md](messages.md) tells what goes when. A field marked ? may be absent. A *figure*
is a number as a text of 17 significant digits, or one of nan, NaN, inf and -inf; *figures* are such a text, or several
numbers in brackets.
"""
WORDS = {"string": "text", "integer": "whole number", "boolean": "true or false", "null": "nothing", "object": "object"}


def kind(schema):
    """The type of a field in words."""
    if "$ref" in schema:
        name = schema["$ref"].rsplit("/", 1)[1]
        return f"*{name}*" if name.startswith("figure") else f"[{name}](#{name.lower()})"
    if "const" in schema or "enum" in schema:
        return ", ".join(f"`{json.dumps(word)}`" for word in schema.get("enum", [schema.get("const")]))
    if "oneOf" in schema:
        return " or ".join(map(kind, schema["oneOf"]))
    types = schema["type"] if isinstance(schema["type"], list) else [schema["type"]]
    of = " of " + re.sub("^(text|whole number|number|object)", r"\1s", kind(schema["items"])) if "items" in schema else ""
    return " or ".join("list" + of if name == "array" else WORDS.get(name, name) for name in types)


def fields(schema, prefix=""):
    """(name, type, meaning) of all fields of an object, those of objects within it behind their place."""
    for name, field in schema.get("properties", {}).items():
        yield f"`{prefix}{name}`{'' if name in schema['required'] else ' ?'}", kind(field), field.get("description", "")
        yield from fields(field, f"{prefix}{name}.")
        yield from fields(field.get("items", {}), f"{prefix}{name}[].")


def section(name, schema):
    lines = [f"\n## {name}\n"]
    if "description" in schema:
        lines.append(schema["description"] + "\n")
    if "anyOf" in schema:
        lines.append("One of " + ", ".join(map(kind, schema["anyOf"])) + ".\n")
        return lines
    # Of alternatives the last has the fields of all.
    rows = list(fields(schema["oneOf"][-1] if "oneOf" in schema else schema))
    return lines + ["| Field | Type | Meaning |\n|---|---|---|"] + [f"| {' | '.join(row)} |".replace("|  |", "| |") for row in rows]


def page(schema):
    parts = [HEADER.rstrip()]
    for name, definition in schema["$defs"].items():
        if not name.startswith("figure"):
            parts.append("\n".join(section(name, definition)).rstrip())
    return "\n".join(parts) + "\n"


if __name__ == "__main__":
    with open(os.path.join(sys.argv[1], "messages.schema.json"), encoding="utf-8") as file:
        text = page(json.load(file))
    with open(os.path.join(sys.argv[1], "message-fields.md"), "w", encoding="utf-8") as file:
        file.write(text)
