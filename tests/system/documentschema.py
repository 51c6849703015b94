"""The published schemas of quenra's documents."""

import json
import pathlib
import warnings

import jsonschema

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "docs" / "schema"


class DocumentSchema:
    """Checks that a document is valid, and that its schema declares each of its members."""

    def __init__(self):
        self.schemas = {
            path.name: json.loads(path.read_text(encoding="utf-8"))
            for path in sorted(FOLDER.glob("*.schema.json"))
        }
        for schema in self.schemas.values():
            jsonschema.Draft202012Validator.check_schema(schema)

    def check_line(self, line):
        """Checks an event; the last line is a document."""
        if line["event"] == "result":
            self.check(line)
            return
        schema = self.schemas["event.schema.json"]
        self._validator(schema).validate(line)
        undeclared = [name for name in line if name not in schema["properties"]]
        if undeclared:
            raise AssertionError(f"members that the schema leaves out: {undeclared}")

    def check(self, document):
        schema = self.schemas[document["kind"] + ".schema.json"]
        self._validator(schema).validate(document)
        undeclared = list(self._undeclared(document, schema, ""))
        if undeclared:
            raise AssertionError(f"members that the schema leaves out: {undeclared}")

    def _validator(self, schema):
        with warnings.catch_warnings():
            # RefResolver is deprecated, but older versions of jsonschema have no replacement.
            warnings.simplefilter("ignore", DeprecationWarning)
            resolver = jsonschema.RefResolver("", schema, store=dict(self.schemas))
            return jsonschema.Draft202012Validator(schema, resolver=resolver)

    def _declared(self, schema):
        """The properties that a schema names for an object, those of included schemas too."""
        properties = dict(schema.get("properties", {}))
        if "$ref" in schema:
            properties.update(self._declared(self.schemas[schema["$ref"]]))
        for part in schema.get("allOf", []):
            for name, declaration in self._declared(part).items():
                properties.setdefault(name, declaration)
        return properties

    def _undeclared(self, value, schema, path):
        if isinstance(value, list):
            for position, item in enumerate(value):
                yield from self._undeclared(item, schema.get("items", {}), f"{path}[{position}]")
        if isinstance(value, dict):
            declared = self._declared(schema)
            for name, member in value.items():
                if name not in declared:
                    yield f"{path}.{name}"
                else:
                    yield from self._undeclared(member, declared[name], f"{path}.{name}")
