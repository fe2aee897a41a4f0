// Compares the step pictures with sharp on phone screenshots of 1290 x 2796 pixels, each side in
// processes of its own, warm, taking turns:
//   npm ci && npm run compare -- ../../build/release/bin/picture_bench
// Prints the ratios ours / sharp and ends with 1 when one exceeds its goal.
import {execFileSync} from "node:child_process";
import {mkdtempSync, rmSync} from "node:fs";
import {tmpdir} from "node:os";
import {join, resolve} from "node:path";
import {fileURLToPath} from "node:url";
import {draw} from "./screens.mjs";

const goals = {png: {time: 0.7, memory: 0.1}, jpg: {time: 0.8, memory: 0.1}};
// A PNG full of noise is nearly all inflating and unfiltering, and there a libpng without vector code,
// as Debian builds it for amd64, is level with sharp's own at best.
const withoutTimeGoal = ["busy.png"];
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

function cell(ours, theirs, goal) {
  const ratio = ours / theirs;
  const mark = ratio > goal ? "!" : " ";
  return {
    text: `${ours.toFixed(1).padStart(6)} /${theirs.toFixed(1).padStart(6)} = ${ratio.toFixed(2)}${mark}`,
    met: mark === " ",
  };
}

let met = true;
try {
  console.log("ours / sharp".padEnd(14) + "time, ms".padEnd(24) + "memory grown by, MiB".padEnd(24) + "whole process, MiB");
  for (const kind of ["png", "jpg"]) {
    const tiny = await write((await draw("light")).resize(32), `tiny.${kind}`);
    for (const screen of ["light", "dark", "busy"]) {
      const file = await write(await draw(screen), `${screen}.${kind}`);
      const {ours, theirs} = compare(tiny, file);
      const cells = [
        cell(
          ours.milliseconds,
          theirs.milliseconds,
          withoutTimeGoal.includes(`${screen}.${kind}`) ? Infinity : goals[kind].time,
        ),
        cell(ours.grown, theirs.grown, goals[kind].memory),
        cell(ours.peak, theirs.peak, goals[kind].memory),
      ];
      met &&= cells.every((one) => one.met);
      console.log(`${screen}.${kind}`.padEnd(14) + cells.map((one) => one.text.padEnd(24)).join(""));
    }
  }
} finally {
  rmSync(folder, {recursive: true});
}
process.exitCode = met ? 0 : 1;
