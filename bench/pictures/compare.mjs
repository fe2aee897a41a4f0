// Compares the step pictures with sharp on phone screenshots of 1290 x 2796 pixels, each side in
// processes of its own, warm, taking turns:
//   npm ci && npm run compare -- ../../build/release/bin/picture_bench
// Prints rows of a table in Markdown; ratios are ours / sharp.
import {execFileSync} from "node:child_process";
import {mkdtempSync, rmSync} from "node:fs";
import {tmpdir} from "node:os";
import {join, resolve} from "node:path";
import {fileURLToPath} from "node:url";
import {draw} from "./screens.mjs";

// Noise is no screenshot. A PNG of it is nearly all inflating and unfiltering, and there a libpng without
// vector code, as Debian builds it for amd64, is level with sharp's own at best.
const timeGoals = {light: 0.6, dark: 0.6, busy: Infinity};
const memoryGoal = 0.1;
const turns = 5;
const rounds = 15;

const [program] = process.argv.slice(2);
if (!program) {
  console.error("usage: npm run compare -- PATH_OF_picture_bench");
  process.exit(2);
}
const sharpBench = fileURLToPath(new URL("sharp_bench.mjs", import.meta.url));
const folder = mkdtempSync(join(tmpdir(), "picture-bench-"));

function report(command, ...more) {
  return JSON.parse(execFileSync(command, [...more, String(rounds)], {encoding: "utf8"}));
}

/** The least of each number over the turns: what others did on the machine only adds. */
function best(reports) {
  const least = (key) => Math.min(...reports.map((one) => one[key]));
  return {
    milliseconds: least("milliseconds"),
    grown: least("grownKilobytes") / 1024,
    peak: least("peakKilobytes") / 1024,
  };
}

function compare(warmUpFile, file) {
  const ours = [];
  const theirs = [];
  for (let turn = 0; turn < turns; ++turn) {
    ours.push(report(resolve(program), warmUpFile, file));
    theirs.push(report(process.execPath, sharpBench, warmUpFile, file));
  }
  return {ours: best(ours), theirs: best(theirs)};
}

/** Writes the picture in `image` into the folder as `name`, whose suffix says how. */
async function write(image, name) {
  const file = join(folder, name);
  await (name.endsWith("png") ? image.png({adaptiveFiltering: true}) : image.jpeg({quality: 90})).toFile(file);
  return file;
}

function print(what, goal, ours, theirs, unit) {
  const ratio = ours / theirs;
  const required = goal === Infinity ? "—" : `≤ ${goal.toFixed(2)} ×`;
  const reached = goal === Infinity ? "—" : ratio <= goal ? "yes" : "**no**";
  console.log(
    `| ${what} | ${required} | ${ratio.toFixed(2)} × | ${reached} | ${ours.toFixed(1)} ${unit} | ${theirs.toFixed(1)} ${unit} |`,
  );
}

try {
  for (const kind of ["png", "jpg"]) {
    const tiny = await write((await draw("light")).resize(32), `tiny.${kind}`);
    for (const screen of ["light", "dark", "busy"]) {
      const file = await write(await draw(screen), `${screen}.${kind}`);
      const {ours, theirs} = compare(tiny, file);
      const what = `a picture of a ${screen} screen, 1290 x 2796, ${kind === "png" ? "PNG" : "JPEG"}, against sharp`;
      print(what, timeGoals[screen], ours.milliseconds, theirs.milliseconds, "ms");
      print(`${what}, memory grown by`, memoryGoal, ours.grown, theirs.grown, "MiB");
    }
  }
} finally {
  rmSync(folder, {recursive: true});
}
