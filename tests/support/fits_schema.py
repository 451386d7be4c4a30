"""Says what the objects in the named files have that the schema of the audit does not allow."""
import json
import pathlib
import sys

import jsonschema

PLACE = pathlib.Path(__file__).resolve().parents[2] / 'docs/cnatool-audit.schema.json'
SCHEMA = json.loads(PLACE.read_text(encoding='utf-8'))
jsonschema.Draft202012Validator.check_schema(SCHEMA)
CHECKER = jsonschema.Draft202012Validator(SCHEMA)
WRONG = [f'{name}: {error.json_path} {error.message}' for name in sys.argv[1:]
         for error in CHECKER.iter_errors(json.loads(pathlib.Path(name).read_text(encoding='utf-8')))]
sys.exit('\n'.join(WRONG) or None)
