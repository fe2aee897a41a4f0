// The same as get_status does with the results: takes the five newest and tells what they say. Unlike
// the tool it does not look whether the app runs.
//   node newest_results.mjs FOLDER
import {readFileSync, readdirSync, statSync} from "node:fs";
import {serve} from "./answering.mjs";

const folder = process.argv[2];

serve(() => {
  const recent = readdirSync(folder)
    .filter((name) => name.endsWith(".json") && !name.startsWith("."))
    .map((name) => ({name, modified: statSync(`${folder}/${name}`).mtimeMs}))
    .sort((left, right) => right.modified - left.modified)
    .slice(0, 5)
    .map(({name, modified}) => {
      const {requestId, status, terminal, source, projectName} = JSON.parse(readFileSync(`${folder}/${name}`, "utf8"));
      return {requestId, status, terminal, source, projectName, secondsSinceUpdate: Math.trunc((Date.now() - modified) / 1000)};
    });
  return `Corvane status\n\n${JSON.stringify({recentRequests: recent})}`;
});
