// Validates arguments of create_test, already parsed, against its published schema, already
// compiled, with ajv.
//   node validate.mjs SCHEMA_FILE ARGUMENTS_FILE UNCOUNTED COUNTED
import {readFileSync} from "node:fs";
import Ajv2020 from "ajv/dist/2020.js";
import {time} from "./timing.mjs";

const [schemaFile, argumentsFile, ...counts] = process.argv.slice(2);
const validate = new Ajv2020({strict: false}).compile(JSON.parse(readFileSync(schemaFile, "utf8")));
const payload = JSON.parse(readFileSync(argumentsFile, "utf8"));

time(() => {
  if (!validate(payload)) throw new Error(JSON.stringify(validate.errors));
}, counts);
