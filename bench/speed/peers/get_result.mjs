// The same as get_result: reads the result, checks that it is JSON and what its status is, and answers
// with its text.
//   node get_result.mjs RESULT_FILE
import {readFileSync} from "node:fs";
import {serve} from "./answering.mjs";

const file = process.argv[2];

serve(() => {
  const json = readFileSync(file, "utf8");
  const {status, terminal} = JSON.parse(json);
  return `status: ${status} (${terminal ? "terminal" : "NOT terminal"})\n\n${json}`;
});
