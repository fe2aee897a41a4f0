// Draws the golden pictures that the unit tests compare with: what the step pictures of three screens
// should look like, made without any of our code. Run it when the look of the marks changes, and
// look at what it wrote.
import {mkdir, writeFile} from "node:fs/promises";
import sharp from "sharp";
import {draw} from "./screens.mjs";

const folder = new URL("../../tests/unit/trace/golden/", import.meta.url);
const screen = {width: 540, height: 1170};
const result = {width: 369, height: 800};

const core = 0.003 * 800;
const reach = 0.034 * 800;
const arm = 0.018 * 800;
const barb = 0.035 * 800;

function brackets([x, y]) {
  return [[-1, -1], [1, -1], [-1, 1], [1, 1]]
    .map(([sx, sy]) => {
      const [cx, cy] = [x + sx * reach, y + sy * reach];
      return `M${cx - sx * arm} ${cy} L${cx} ${cy} L${cx} ${cy - sy * arm}`;
    })
    .join(" ");
}

function arrow([x, y], [toX, toY]) {
  const along = Math.atan2(toY - y, toX - x);
  const tip = (turn) =>
    `L${toX} ${toY} L${toX - barb * Math.cos(along + turn)} ${toY - barb * Math.sin(along + turn)}`;
  return `M${x} ${y} ${tip(Math.PI / 6)} M${toX} ${toY} ${tip(-Math.PI / 6)}`;
}

/** The marks of touches given in fractions, `[x, y]` or `[x, y, endX, endY]`, over a result. */
function marks(touches) {
  const at = (x, y) => [x * result.width, y * result.height];
  const path = touches
    .map(([x, y, ...end]) => brackets(at(x, y)) + (end.length ? arrow(at(x, y), at(...end)) : ""))
    .join(" ");
  const stroke = (colour, width) =>
    `<path d='${path}' fill='none' stroke='${colour}' stroke-width='${width}' stroke-linecap='round' stroke-linejoin='round'/>`;
  return Buffer.from(
    `<svg xmlns='http://www.w3.org/2000/svg' width='${result.width}' height='${result.height}'>` +
      stroke("#000", 4 * core) + stroke("#ffe400", 2 * core) + "</svg>",
  );
}

async function write(name, encode, touches) {
  const small = await draw(name).resize(screen).png().toBuffer();
  const input = await encode(sharp(small)).toBuffer({resolveWithObject: true});
  await writeFile(new URL(`${name}.${input.info.format === "png" ? "png" : "jpg"}`, folder), input.data);
  const upright = sharp(small).resize({...result, kernel: "linear"}).flatten({background: "#000"});
  const expected = upright.composite([{input: marks(touches)}]);
  await expected
    .jpeg({quality: 92, chromaSubsampling: "4:2:0"})
    .toFile(new URL(`${name}-marked.jpg`, folder).pathname);
}

await mkdir(folder, {recursive: true});
await write("light", (image) => image.png({adaptiveFiltering: true, progressive: true}), [
  [0.67, 0.538],
  [0.02, 0.01],
]);
await write("dark", (image) => image.flatten().jpeg({quality: 90, progressive: true}), [
  [0.3, 0.75, 0.75, 0.35],
]);
await write(
  "busy",
  (image) => image.flatten().rotate(270).withMetadata({orientation: 6}).jpeg({quality: 90}),
  [
    [0.5, 0.6, 0.5, 0.2],
    [0.9, 0.9, 1.3, 0.5],
  ],
);
