// The same job and the same report as picture_bench, done by sharp:
//   node sharp_bench.mjs WARM_UP_FILE FILE ROUNDS
import {readFileSync, writeFileSync} from "node:fs";
import sharp from "sharp";

const [warmUpFile, file, rounds] = process.argv.slice(2);

function kilobytes(entry) {
  return Number(readFileSync("/proc/self/status", "utf8").match(new RegExp(`${entry}:\\s+(\\d+)`))[1]);
}

function makePicture(input) {
  return sharp(input)
    .autoOrient()
    .resize({width: 800, height: 800, fit: "inside", withoutEnlargement: true})
    .flatten({background: "#000"})
    .jpeg({quality: 70})
    .toBuffer();
}

// A cached result would not be worked out again.
sharp.cache(false);
await makePicture(warmUpFile);
writeFileSync("/proc/self/clear_refs", "5"); // forgets the peak that starting up has left
const residentBefore = kilobytes("VmRSS");

const milliseconds = [];
let picture;
for (let i = 0; i < Number(rounds); ++i) {
  const start = performance.now();
  picture = await makePicture(file);
  milliseconds.push(performance.now() - start);
}
const peak = kilobytes("VmHWM");
console.log(
  JSON.stringify({
    milliseconds: Math.min(...milliseconds),
    grownKilobytes: peak - residentBefore,
    peakKilobytes: peak,
    bytes: picture.length,
  }),
);
