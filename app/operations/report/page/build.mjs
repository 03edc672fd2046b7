// SPDX-License-Identifier: MIT
// build.mjs OUT: bundles everything into one page, with placeholders for the title and the data of a report.
import { build } from "esbuild";
import { readFile, writeFile } from "node:fs/promises";

const out = process.argv[2];
const bundle = await build({
  entryPoints: ["main.js"],
  bundle: true,
  minify: true,
  format: "iife",
  target: "es2020",
  write: false,
  legalComments: "inline",
});
// The text of a script ends at the first "</script".
const script = bundle.outputFiles[0].text.replaceAll("</script", "<\\/script");
const page = await readFile("page.html", "utf8");
const style = await readFile("page.css", "utf8");
await writeFile(out, page.replace("/*STYLE*/", () => style).replace("/*SCRIPT*/", () => script));
