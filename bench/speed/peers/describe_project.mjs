// The same as describe_project without arguments: reads the context, selects the open project,
// summarises the others, and answers with sorted keys. Unlike the tool it does not look whether the
// app runs.
//   node describe_project.mjs CONTEXT_FILE
import {readFileSync} from "node:fs";
import {serve} from "./answering.mjs";

const file = process.argv[2];
const collator = new Intl.Collator(undefined, {sensitivity: "accent"});

/** JSON.stringify keeps the order in which members were set, so a copy is made in key order. */
function sorted(value) {
  if (Array.isArray(value)) return value.map(sorted);
  if (value === null || typeof value !== "object") return value;
  const copy = {};
  for (const key of Object.keys(value).sort()) copy[key] = sorted(value[key]);
  return copy;
}

serve(() => {
  const context = JSON.parse(readFileSync(file, "utf8"));
  const brief = {};
  for (const key of ["schemaVersion", "updatedAt", "appVersion", "device", "userDefinedInteractions"]) {
    if (context[key] !== undefined && context[key] !== null) brief[key] = context[key];
  }
  if (typeof context.currentProjectName === "string") brief.currentProjectName = context.currentProjectName;
  const projects = context.projects.filter((project) => project !== null && typeof project === "object");
  const selected = projects.find((project) => collator.compare(project.name, context.currentProjectName) === 0);
  if (selected) brief.project = selected;
  brief.otherProjects = projects
    .filter((project) => project !== selected)
    .map(({name, platform, tests}) => ({name, platform, testCount: Array.isArray(tests) ? tests.length : 0}));
  return `Corvane workspace context (updated ${context.updatedAt}).\n\n${JSON.stringify(sorted(brief))}`;
});
