// Phone screens drawn as SVG: something believable to measure with and to look at.
import sharp from "sharp";

export const width = 1290;
export const height = 2796;

const font = "font-family='DejaVu Sans, sans-serif'";

function text(x, y, size, fill, words, extra = "") {
  return `<text x='${x}' y='${y}' font-size='${size}' fill='${fill}' ${font} ${extra}>${words}</text>`;
}

function box(x, y, w, h, fill, radius = 0, extra = "") {
  return `<rect x='${x}' y='${y}' width='${w}' height='${h}' rx='${radius}' fill='${fill}' ${extra}/>`;
}

function statusBar(ink) {
  return (
    text(120, 108, 50, ink, "9:41", "font-weight='bold'") +
    [0, 1, 2, 3].map((bar) => box(960 + bar * 18, 96 - bar * 9, 12, 14 + bar * 9, ink, 3)).join("") +
    box(1090, 72, 84, 38, "none", 11, `stroke='${ink}' stroke-width='4'`) +
    box(1096, 78, 60, 26, ink, 6)
  );
}

function settings() {
  const rows = ["Wi-Fi", "Bluetooth", "Notifications", "Sounds", "Privacy", "Storage", "Language"];
  const colours = ["#2f7cf6", "#3a8bff", "#e5484d", "#f0569b", "#30a46c", "#8e8e93", "#0ea5b7"];
  const list = rows.map((row, i) => {
    const y = 620 + i * 156;
    return (
      box(90, y + 30, 96, 96, colours[i], 22) +
      text(230, y + 98, 54, "#1c1c1e", row) +
      text(1200, y + 98, 54, "#c4c4c8", "›") +
      (i ? box(230, y, 1012, 2, "#e2e2e6") : "")
    );
  });
  return (
    box(0, 0, width, height, "#f2f2f7") +
    statusBar("#000") +
    text(72, 360, 104, "#000", "Settings", "font-weight='bold'") +
    box(48, 430, 1194, 116, "#e3e3e8", 30) +
    text(110, 506, 50, "#8a8a8e", "Search") +
    box(48, 620, 1194, 156 * rows.length, "#fff", 36) +
    list.join("") +
    box(48, 1840, 1194, 150, "#fff", 36) +
    text(645, 1934, 54, "#e5484d", "Sign out", "text-anchor='middle'") +
    box(0, 0, width, height, "#000", 0, "opacity='0.28'") +
    box(185, 1010, 920, 620, "#fff", 60) +
    text(645, 1150, 62, "#000", "Allow notifications?", "text-anchor='middle' font-weight='bold'") +
    text(645, 1250, 46, "#3c3c43", "Orders and messages will show", "text-anchor='middle'") +
    text(645, 1316, 46, "#3c3c43", "on the lock screen.", "text-anchor='middle'") +
    box(225, 1430, 400, 150, "#e9e9ee", 40) +
    text(425, 1524, 54, "#000", "Don’t allow", "text-anchor='middle'") +
    box(665, 1430, 400, 150, "#2f7cf6", 40) +
    text(865, 1524, 54, "#fff", "Allow", "text-anchor='middle'")
  );
}

function messages() {
  const names = ["Ada", "Grace", "Linus", "Barbara", "Ken", "Margaret", "Dennis", "Radia", "Edsger"];
  const tints = ["#7c5cff", "#ff7a59", "#2dd4bf", "#facc15", "#60a5fa", "#f472b6", "#a3e635"];
  const rows = names.map((name, i) => {
    const y = 480 + i * 236;
    const tint = tints[i % tints.length];
    return (
      `<circle cx='150' cy='${y + 110}' r='78' fill='${tint}'/>` +
      text(150, y + 134, 70, "#0b0b0f", name[0], "text-anchor='middle' font-weight='bold'") +
      text(270, y + 96, 52, "#f5f5f7", name, "font-weight='bold'") +
      text(270, y + 168, 44, "#8d8d96", "The build is green again, shall we ship?") +
      text(1220, y + 96, 40, "#6b6b74", `${9 - (i % 9)}:${10 + i * 5}`, "text-anchor='end'") +
      box(270, y + 228, 1020, 2, "#1f1f26")
    );
  });
  return (
    box(0, 0, width, height, "#0b0b0f") +
    statusBar("#fff") +
    text(72, 330, 96, "#fff", "Messages", "font-weight='bold'") +
    rows.join("") +
    box(0, 2610, width, 186, "#15151b") +
    ["#60a5fa", "#6b6b74", "#6b6b74", "#6b6b74"]
      .map((tint, i) => `<circle cx='${190 + i * 303}' cy='2690' r='36' fill='${tint}'/>`)
      .join("")
  );
}

function map() {
  const streets = [];
  for (let i = 0; i < 26; ++i) {
    const skew = ((i * 7919) % 400) - 200;
    const stroke = i % 5 ? "#ffffff" : "#ffd45e";
    const thick = i % 5 ? 14 : 34;
    streets.push(
      `<path d='M${i * 120 - 700} 0 L${i * 120 - 300 + skew} ${height}' stroke='${stroke}' stroke-width='${thick}'/>`,
      `<path d='M0 ${i * 130 - 200} L${width} ${i * 130 + skew}' stroke='${stroke}' stroke-width='${thick}'/>`,
    );
  }
  const pins = [[300, 800], [870, 640], [520, 1500], [1010, 1880], [220, 2080]].map(
    ([x, y], i) =>
      `<circle cx='${x}' cy='${y}' r='46' fill='${["#e5484d", "#7c5cff", "#30a46c"][i % 3]}' stroke='#fff' stroke-width='8'/>`,
  );
  return (
    `<filter id='land'><feTurbulence type='fractalNoise' baseFrequency='0.012' numOctaves='5' seed='7'/>
     <feColorMatrix values='0.9 0 0 0 0.1  0 1.1 0 0 0.2  0 0 0.7 0 0.1  0 0 0 0 1'/></filter>` +
    `<rect width='${width}' height='${height}' filter='url(#land)'/>` +
    streets.join("") +
    `<path d='M-50 1900 C 300 1500, 700 2300, 1400 1700' stroke='#4aa3df' stroke-width='120' fill='none'/>` +
    pins.join("") +
    statusBar("#000") +
    box(48, 170, 1194, 140, "#fff", 70) +
    text(150, 260, 54, "#333", "Coffee near the river") +
    box(48, 2380, 1194, 340, "#fff", 60) +
    text(110, 2480, 58, "#111", "Quay Street Roasters", "font-weight='bold'") +
    text(110, 2556, 46, "#666", "Open until 18:00 · 350 m") +
    box(860, 2580, 330, 110, "#30a46c", 55) +
    text(1025, 2654, 48, "#fff", "Walk", "text-anchor='middle'")
  );
}

export const screens = {
  light: settings,
  dark: messages,
  busy: map,
};

/** The screen `name` as a sharp image with an alpha channel, as phones record them. */
export function draw(name) {
  const svg = `<svg xmlns='http://www.w3.org/2000/svg' width='${width}' height='${height}'>${screens[name]()}</svg>`;
  return sharp(Buffer.from(svg)).ensureAlpha();
}
