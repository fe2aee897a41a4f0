// The same as describe_project without arguments: reads the context, selects the open project,
// summarises the others, and answers with sorted keys. Unlike the tool it does not look whether the
// app runs.
//   node describe_project.mjs CONTEXT_FILE
import {readFileSync} from "node:fs";
import {serve} from "./answering.mjs";
import {sorted} from "./sorting.mjs";

const file = process.argv[2];
const collator = new Intl.Collator(undefined, {sensitivity: "accent"});

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
