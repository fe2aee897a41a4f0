// Answers requests as a server does: one on each line of standard input, with what `answer` returns
// as the text of a tool's answer.
import {createInterface} from "node:readline";

export function serve(answer) {
  createInterface({input: process.stdin, crlfDelay: Infinity}).on("line", (line) => {
    const {id} = JSON.parse(line);
    const result = {content: [{text: answer(), type: "text"}], isError: false};
    process.stdout.write(JSON.stringify({id, jsonrpc: "2.0", result}) + "\n");
  });
}
