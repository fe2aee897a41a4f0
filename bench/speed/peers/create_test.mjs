// The same as create_test: parses the line, validates the arguments with ajv against the published
// schema, already compiled, writes the test with sorted keys into its folder and answers. Unlike the
// tool it does not look whether the app runs.
//   node create_test.mjs SCHEMA_FILE FOLDER
import {randomUUID} from "node:crypto";
import {readFileSync, renameSync, writeFileSync} from "node:fs";
import {createInterface} from "node:readline";
import Ajv2020 from "ajv/dist/2020.js";
import {sorted} from "./sorting.mjs";

const [schemaFile, folder] = process.argv.slice(2);
const validate = new Ajv2020({strict: false}).compile(JSON.parse(readFileSync(schemaFile, "utf8")));

function write(payload) {
  const requestId = randomUUID();
  const file = `${folder}/${requestId}.corvane.json`;
  writeFileSync(`${file}.part`, JSON.stringify(sorted({...payload, requestId, createdAt: new Date().toISOString()})));
  renameSync(`${file}.part`, file);
  return `dispatched to Corvane\n\n  requestId: ${requestId}\n  File: ${file}`;
}

createInterface({input: process.stdin, crlfDelay: Infinity}).on("line", (line) => {
  const {id, params} = JSON.parse(line);
  if (!validate(params.arguments)) throw new Error(JSON.stringify(validate.errors));
  const result = {content: [{text: write(params.arguments), type: "text"}], isError: false};
  process.stdout.write(JSON.stringify({id, jsonrpc: "2.0", result}) + "\n");
});
