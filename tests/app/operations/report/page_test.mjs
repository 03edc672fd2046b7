// SPDX-License-Identifier: MIT
// page_test.mjs ZR EXAMPLES FOLDER: makes reports with the program and uses them like a reader.
import { execFileSync, spawnSync } from "node:child_process";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { Browser } from "../../../../tools/browser.mjs";

const [zr, examples, folder] = process.argv.slice(2);
mkdirSync(folder, { recursive: true });
const path = (name) => join(folder, name);
const windmill = join(examples, "windmill.gltf");
let failures = 0;
const expect = (condition, text) => {
  if (condition) return;
  ++failures;
  console.error(`FAILED: ${text}`);
};
const run = (...words) => execFileSync(zr, words, { encoding: "utf8" });

// A scene of many nodes, some of which cleaning removes.
function manyNodes(count) {
  const nodes = [{ name: "root", children: Array.from({ length: count }, (_, i) => i + 1) }];
  for (let i = 0; i < count; ++i) {
    const isCopy = i % 1000 === 1, place = isCopy ? i - 1 : i;
    nodes.push(i % 4 === 3 ? { name: `empty ${i}` } : { name: `${isCopy ? "copy" : "box"} ${i}`, mesh: 0,
      translation: [(place % 100) * 2, Math.floor(place / 100) * 2, 0] });
  }
  const positions = new Float32Array([0, 0, 0, 1, 0, 0, 0, 1, 0]);
  const uri = `data:application/octet-stream;base64,${Buffer.from(positions.buffer).toString("base64")}`;
  return JSON.stringify({ asset: { version: "2.0" }, scene: 0, scenes: [{ nodes: [0] }], nodes,
    meshes: [{ name: "</script><b>", primitives: [{ attributes: { POSITION: 0 } }] }],
    accessors: [{ bufferView: 0, componentType: 5126, count: 3, type: "VEC3", min: [0, 0, 0], max: [1, 1, 0] }],
    bufferViews: [{ buffer: 0, byteLength: 36 }], buffers: [{ byteLength: 36, uri }] });
}

const browser = await Browser.start();
const text = (selector) => browser.evaluate(`document.querySelector(${JSON.stringify(selector)})?.textContent ?? ""`);
const tabs = () => browser.evaluate(`[...document.querySelectorAll("[role=tab]")].map((tab) => tab.id.slice(4)).join()`);
// The number of pixels of the canvas that differ from the background.
const drawn = () => browser.evaluate(`new Promise((resolve) => { const report = zrReport; report.view.draw();
  requestAnimationFrame(() => requestAnimationFrame(() => { const gl = report.view.renderer.getContext();
    report.view.renderer.render(report.view.scenes[0].scene, report.view.camera);
    const w = gl.drawingBufferWidth, h = gl.drawingBufferHeight, p = new Uint8Array(w * h * 4);
    gl.readPixels(0, 0, w, h, gl.RGBA, gl.UNSIGNED_BYTE, p);
    let n = 0; for (let i = 4; i < p.length; i += 4) if (p[i] !== p[0] || p[i + 1] !== p[1]) ++n; resolve(n); })); })`);

// A part of the clip, reversed and at another speed, is compared with the same part of the source.
async function testClip() {
  run("export", windmill, path("clip.glb"), "--from", "0.5", "--to", "1.5", "--speed", "2", "--reverse", "--report", path("clip.html"));
  await browser.open(path("clip.html"));
  await browser.click("#tab-deviation");
  const off = Number((await text("#content .legend")).split(": ")[1]);
  expect(off >= 0 && off < 1e-3, `the deviation of a clip is small: ${off}`);
}

async function testExport() {
  run("export", windmill, path("mill.glb"), "--merge-keys", "--report", path("export.html"));
  await browser.open(path("export.html"));
  expect((await tabs()) === "summary,tree,curves,deviation", `tabs of an export: ${await tabs()}`);
  expect((await drawn()) > 500, "the scene is drawn");
  await browser.click("#tab-tree");
  const rows = "document.querySelectorAll('[role=treeitem]').length";
  const before = await browser.evaluate(rows);
  await browser.click("[role=treeitem] .twist", `new Promise((done) => { document.querySelector(".rows").style.height = "300px";
    requestAnimationFrame(() => requestAnimationFrame(done)); })`); // resizing the list must not lose the click
  await browser.until(`${rows} < ${before}`, 10);
  await browser.click("#tab-curves");
  expect((await text("#content .flag")).includes("keys"), "tracks show their number of keys");
  expect(await browser.evaluate(`(() => { const c = document.querySelector("canvas.plot"), d = c.getContext("2d")
    .getImageData(0, 0, c.width, c.height).data; return d.some((v, i) => i % 4 === 3 && v > 0); })()`), "a curve is plotted");
  await browser.click("#tab-deviation");
  const off = Number((await text("#content .legend")).split(": ")[1]);
  expect(off >= 0 && off < 1e-3, `the deviation of exact passes is small: ${off}`);
  await browser.evaluate(`{ const t = document.querySelector("#time"); t.value = 0.5; t.dispatchEvent(new Event("input")); }`);
  expect((await text("#clock")) !== "0.00 s", "the slider sets the time");
  await browser.evaluate("document.activeElement.blur()");
  await browser.press(" ");
  await browser.until("zrReport.playing && zrReport.view.frames > 3");
  await browser.press(" ");
  await browser.until("!zrReport.playing", 10);
  const theme = await browser.evaluate("document.documentElement.dataset.theme");
  await browser.press("t");
  await browser.until(`document.documentElement.dataset.theme !== ${JSON.stringify(theme)}`, 10);
}

// The up direction of the source is up in the picture, whichever axis it is in the result.
async function testUpAxis() {
  run("export", windmill, path("up.glb"), "--up", "z", "--report", path("up.html"));
  await browser.open(path("up.html"));
  expect(await browser.evaluate("zrReport.view.camera.up.z > 0.999"), "a scene with Z up stands upright");
}
async function testClean() {
  writeFileSync(path("many.gltf"), manyNodes(10000));
  run("clean", path("many.gltf"), path("clean.glb"), "--report", path("clean.html"));
  await browser.open(path("clean.html"));
  expect((await tabs()).startsWith("changes,summary,tree"), `tabs of a clean report: ${await tabs()}`);
  expect((await text("#content")).includes("removed: "), "removed elements are listed");
  expect((await browser.evaluate("document.querySelectorAll('.row').length")) < 200, "only visible rows exist");
  await browser.evaluate("new Promise((resolve) => { zrReport.setPart(0.5); requestAnimationFrame(() => requestAnimationFrame(resolve)); })");
  const calls = await browser.evaluate("zrReport.view.renderer.info.render.calls");
  expect(calls > 0 && calls < 20, `10,000 nodes are drawn with ${calls} calls`);
  expect((await drawn()) > 500, "10,000 nodes are drawn");
  const bright = await browser.evaluate("[...zrReport.view.scenes[0].lit.keys()].filter((mesh) => mesh.material.emissiveIntensity < 1).length");
  expect(bright === 10, `${bright} of 10 removed meshes are highlighted`);
  await browser.press("/");
  await browser.type("empty 4443");
  await browser.until("document.querySelectorAll('.row').length === 2", 10);
  expect((await text("[role=treeitem]:last-child")).includes("empty 4443"), "search finds a name");
  await browser.press("Escape");
  await browser.press("3");
  await browser.until("document.querySelector('#tab-tree').getAttribute('aria-selected') === 'true'", 10);
  const frames = await browser.evaluate(`new Promise((resolve) => { const list = document.querySelector(".rows"); let n = 0;
    const start = performance.now(); const step = () => { list.scrollTop += 2000; ++n;
      performance.now() - start < 1000 ? requestAnimationFrame(step) : resolve(n); }; step(); })`);
  expect(frames > 10, `10,000 rows scroll: ${frames} frames a second`);
  const held = { asset: { version: "2.0" }, nodes: [{ name: "a" }, { name: "b" }], scenes: [{ nodes: [0, 1] }],
    buffers: [{ byteLength: 32, uri: `data:;base64,${Buffer.from(new Float32Array([0, 1, 0, 0, 0, 1, 0, 0]).buffer).toString("base64")}` }],
    bufferViews: [{ buffer: 0, byteLength: 32 }], accessors: [{ bufferView: 0, componentType: 5126, count: 2, type: "SCALAR", min: [0], max: [1] },
      { bufferView: 0, byteOffset: 8, componentType: 5126, count: 2, type: "VEC3" }],
    animations: [{ samplers: [{ input: 0, output: 1 }], channels: [0, 1].map((node) => ({ sampler: 0, target: { node, path: "translation" } })) }] };
  writeFileSync(path("held.gltf"), JSON.stringify(held));
  run("clean", path("held.gltf"), path("held.glb"), "--report", path("held.html"));
  await browser.open(path("held.html"));
  expect((await text("#content")).includes("kept: channel of animation 0 (2)"), "elements kept for one reason are one group");
}

async function testMerge() {
  run("merge", windmill, path("merged.glb"), "--animations", "turn,flight", "--report", path("merge.html"));
  await browser.open(path("merge.html"));
  expect((await tabs()).startsWith("timeline,"), `tabs of a merge: ${await tabs()}`);
  const lanes = await browser.evaluate(`[...document.querySelectorAll(".lane .track")].map((t) => t.getAttribute("aria-label")).join("\\n")`);
  expect(lanes.includes("turn") && lanes.includes("keys"), `lanes: ${lanes}`);
}

async function testCompare() {
  const { status } = spawnSync(zr, ["compare", windmill, path("merged.glb"), "--report", path("compare.html")]);
  expect(status === 1, "merged animations are a difference");
  await browser.open(path("compare.html"));
  expect((await text("#content")).includes("The scenes differ"), "the verdict comes first");
}

async function testText() {
  run("text", "M8 </script>", path("text.stl"), "--units", "mm", "--cap-height", "5", "--depth", "2", "--report", path("text.html"));
  await browser.open(path("text.html"));
  expect((await tabs()).startsWith("drawing,"), `tabs of a text: ${await tabs()}`);
  const content = await text("#content");
  expect(/cap height5 mm/.test(content) && /depth2 mm/.test(content), `measures: ${content}`);
  await browser.until("document.querySelector('.drawing img').naturalWidth > 0", 10);
  expect(await browser.evaluate("zrReport.view.scenes.length") === 1, "a solid, without normals and material, is shown in 3D");
  run("text", "flat", path("flat.svg"), "--style", "stroke", "--report", path("flat.html"));
  await browser.open(path("flat.html"));
  expect(await browser.evaluate("document.body.classList.contains('no-scene')"), "a flat text has a drawing only");
}

function testEscapes() {
  const page = readFileSync(path("clean.html"), "utf8");
  expect(page.split("</script").length === 3, "no content ends the script that contains it");
}

for (const test of [testExport, testClip, testUpAxis, testClean, testMerge, testCompare, testText, testEscapes]) {
  try {
    await test();
  } catch (error) {
    expect(false, `${test.name}: ${error.stack}`);
  }
  expect(browser.errors.length === 0, `${test.name}: ${browser.errors.splice(0).join("; ")}`);
}
await browser.end();
process.exit(failures === 0 ? 0 : 1);
