// SPDX-License-Identifier: MIT
// report-pictures.mjs ZR EXAMPLES OUT: makes the pictures of reports that the documentation shows.
import { execFileSync } from "node:child_process";
import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { Browser } from "./browser.mjs";

const [zr, examples, out] = process.argv.slice(2);
const folder = mkdtempSync(join(tmpdir(), "zr-pictures-"));
const path = (name) => join(folder, name);
const run = (...words) => execFileSync(zr, words, { stdio: "ignore" });

// Boxes in a grid, every third one duplicated in place, and empty nodes.
function crowded() {
  const faces = [0, 1, 2, 2, 1, 3, 4, 6, 5, 5, 6, 7, 0, 4, 1, 1, 4, 5, 2, 3, 6, 6, 3, 7, 0, 2, 4, 4, 2, 6, 1, 5, 3, 3, 5, 7];
  const corners = Float32Array.from({ length: 24 }, (_, i) => ((Math.floor(i / 3) >> (i % 3)) & 1) - 0.5);
  const bytes = Buffer.concat([Buffer.from(corners.buffer), Buffer.from(Uint16Array.from(faces).buffer)]);
  const nodes = [{ name: "hall", children: [] }];
  const add = (node) => nodes[0].children.push(nodes.push(node) - 1);
  for (let x = 0; x < 9; ++x)
    for (let z = 0; z < 6; ++z) {
      const translation = [x * 1.6, ((x * 7 + z * 5) % 4) * 0.3, z * 1.6];
      add({ name: `crate ${x}-${z}`, mesh: (x + z) % 2, translation });
      if ((x + 2 * z) % 3 === 0) add({ name: `crate ${x}-${z} copy`, mesh: (x + z) % 2, translation });
      if (z === 0) add({ name: `marker ${x}` });
    }
  return { asset: { version: "2.0" }, scene: 0, scenes: [{ nodes: [0] }], nodes,
    materials: [[0.75, 0.5, 0.25, 1], [0.3, 0.45, 0.6, 1], [1, 0, 0, 1]].map((baseColorFactor, i) => ({ name: ["wood", "steel", "not used"][i],
      pbrMetallicRoughness: { baseColorFactor, metallicFactor: 0 } })),
    meshes: [0, 1].map((material) => ({ name: ["wooden crate", "steel crate"][material], primitives: [{ attributes: { POSITION: 0 }, indices: 1, material }] })),
    accessors: [{ bufferView: 0, componentType: 5126, count: 8, type: "VEC3", min: [-0.5, -0.5, -0.5], max: [0.5, 0.5, 0.5] },
      { bufferView: 1, componentType: 5123, count: 36, type: "SCALAR" }],
    bufferViews: [{ buffer: 0, byteLength: 96 }, { buffer: 0, byteOffset: 96, byteLength: 72 }],
    buffers: [{ byteLength: 168, uri: `data:application/octet-stream;base64,${bytes.toString("base64")}` }] };
}

const windmill = join(examples, "windmill.gltf");
writeFileSync(path("hall.gltf"), JSON.stringify(crowded()));
run("clean", path("hall.gltf"), path("hall-clean.glb"), "--report", path("clean.html"));
run("export", windmill, path("windmill.glb"), "--merge-keys", "--report", path("export.html"));
run("merge", windmill, path("merged.glb"), "--animations", "turn,flight", "--sequence", "--report", path("merge.html"));
run("text", "M8 x 20", path("plate.stl"), "--units", "mm", "--cap-height", "5", "--depth", "2", "--bold", "--report", path("text.html"));

const browser = await Browser.start({ width: 1280, height: 720 });
const settle = () => new Promise((resolve) => setTimeout(resolve, 800));
async function picture(page, name, dark, prepare = async () => {}) {
  await browser.open(path(page));
  await browser.evaluate(`zrReport.useTheme("${dark ? "dark" : "light"}"); zrReport.highlight(); zrReport.redraw()`);
  await browser.evaluate(`zrReport.setPart(0.4)`);
  await prepare();
  await settle();
  await browser.picture(join(out, name));
}
await picture("clean.html", "report-clean.png", false);
await picture("export.html", "report-export.png", true, () => browser.click("#tab-curves"));
await picture("merge.html", "report-merge.png", false);
await picture("text.html", "report-text.png", true);
await browser.end();
rmSync(folder, { recursive: true });
