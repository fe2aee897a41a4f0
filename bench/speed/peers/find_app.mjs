// The same as health does without an installed app: walks the development folder for builds of it.
//   node find_app.mjs ROOT
import {readdirSync, statSync} from "node:fs";
import {serve} from "./answering.mjs";

function newestBuild(folder, newest) {
  for (const entry of readdirSync(folder, {withFileTypes: true})) {
    if (entry.name.startsWith(".")) continue;
    const path = `${folder}/${entry.name}`;
    if (entry.name === "Corvane.app" && !path.includes("maccatalyst") && !path.includes("Index.noindex")) {
      const modified = statSync(path).mtimeMs;
      if (!newest || modified > newest.modified) newest = {path, modified};
    }
    if (entry.isDirectory()) newest = newestBuild(path, newest);
  }
  return newest;
}

serve(() => `healthy; the app: ${newestBuild(process.argv[2])?.path ?? "<not found>"}`);
