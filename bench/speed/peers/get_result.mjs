// The work of get_result: reads the result, checks that it is JSON and what its status is, and words
// the reply with its text.
//   node get_result.mjs RESULT_FILE UNCOUNTED COUNTED
import {readFileSync} from "node:fs";
import {time} from "./timing.mjs";

const [file, ...counts] = process.argv.slice(2);

function report() {
  const json = readFileSync(file, "utf8");
  const {status, terminal} = JSON.parse(json);
  const text = `status: ${status} (${terminal ? "terminal" : "NOT terminal"})\n\n${json}`;
  return JSON.stringify({id: 1, jsonrpc: "2.0", result: {content: [{text, type: "text"}], isError: false}});
}

time(report, counts);
