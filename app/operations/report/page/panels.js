// SPDX-License-Identifier: MIT
// The panels of a report.
import { Rows } from "./rows.js";
import { plot } from "./plot.js";
import { valueAt } from "./glb.js";
import { deviations } from "./view.js";

function add(host, tag, properties = {}, ...children) {
  const element = Object.assign(document.createElement(tag), properties);
  element.append(...children);
  host?.append(element);
  return element;
}

function table(host, rows, head) {
  const element = add(host, "table");
  if (head) add(element, "tr", {}, ...head.map((text) => add(null, "th", { textContent: text, scope: "col" })));
  for (const row of rows)
    add(element, "tr", {}, ...row.map((cell, i) =>
      add(null, i === 0 && !head ? "th" : "td", { textContent: cell, className: typeof cell === "number" ? "number" : "" })));
  return element;
}

function searchable(host, label, options) {
  const bar = add(host, "div", { className: "bar" });
  const search = add(bar, "input", { type: "search", placeholder: "Search (/)" });
  search.setAttribute("aria-label", `Search ${label}`);
  const count = add(bar, "span");
  const list = add(host, "div", { id: `rows-${label.replaceAll(" ", "-")}` });
  const rows = new Rows(list, { label, ...options });
  search.addEventListener("input", () => {
    rows.filter(search.value);
    count.textContent = `${rows.shown.length}`;
  });
  return rows;
}

const bytes = (n) => n.toString().replace(/\B(?=(\d{3})+$)/g, ",");

// The nodes of a scene, parents before their children, with flags for their kinds and content.
function treeItems(report, scene) {
  const glb = report.glbs[scene];
  const only = new Set(scene === 0 ? report.data.onlyBefore : report.data.onlyAfter);
  const joints = new Set((glb.json.skins ?? []).flatMap((skin) => skin.joints));
  const animated = new Set((glb.json.animations ?? []).flatMap((a) => (a.channels ?? []).map((c) => c.target.node)));
  const items = [];
  const stack = [];
  for (let i = glb.nodes.length - 1; i >= 0; --i) if (glb.parents[i] < 0) stack.push([i, 0]);
  while (stack.length) {
    const [index, level] = stack.pop();
    const node = glb.nodes[index];
    const flags = [];
    if (node.mesh !== undefined) flags.push("mesh");
    if (node.skin !== undefined) flags.push("skinned");
    if (node.camera !== undefined) flags.push("camera");
    if (node.extensions?.KHR_lights_punctual) flags.push("light");
    if (joints.has(index)) flags.push("joint");
    if (animated.has(index)) flags.push("animated");
    if (node.extras) flags.push("extras");
    if (only.has(index)) flags.push(scene === 0 && report.glbs.length > 1 ? "removed" : "new");
    items.push({ text: glb.name(index), level, flags, node: index, hasChildren: Boolean(node.children?.length),
      className: only.has(index) ? (scene === 0 ? "gone" : "came") : "" });
    for (const child of [...(node.children ?? [])].reverse()) stack.push([child, level + 1]);
  }
  return items;
}

function summary(report) {
  return { id: "summary", title: "Summary", show(host) {
    table(host, report.data.summary ?? []);
    const counted = ["nodes", "meshes", "materials", "textures", "images", "skins", "cameras", "animations", "accessors"];
    if (report.glbs.length) {
      add(host, "h2", { textContent: "Contents" });
      const size = (glb, kind) => glb.json[kind]?.length ?? 0;
      table(host, counted.map((kind) => [kind, ...report.glbs.map((glb) => size(glb, kind))])
        .concat([["bytes as one file", ...report.glbs.map((glb) => glb.buffer.byteLength)]]),
        ["", ...report.data.scenes.map((scene) => scene.label)]);
    }
    add(host, "h2", { textContent: "Keyboard" });
    table(host, [["Space", "play or pause"], [", .", "step back or forward"], ["f", "fit the view"], ["/", "search"],
      ["1 to 9", "panels of the report"], ["t", "dark or light"], ["arrows", "move in lists and trees"]]);
  } };
}

function tree(report) {
  return { id: "tree", title: "Hierarchy", show(host) {
    const scene = report.glbs.length - 1;
    const select = add(host, "select");
    select.setAttribute("aria-label", "Scene");
    report.data.scenes.forEach((each, i) => select.add(new Option(each.label, i, i === scene, i === scene)));
    select.hidden = report.glbs.length < 2;
    select.style.marginBottom = "8px";
    const rows = searchable(host, "nodes", { isTree: true, onSelect: (item) => report.say(`${item.text} ${item.flags.join(", ")}`) });
    select.addEventListener("change", () => rows.set(treeItems(report, Number(select.value))));
    rows.set(treeItems(report, scene));
  } };
}

const shades = ["", [6, 3], [2, 3], [8, 3, 2, 3]];

function curves(report) {
  return { id: "curves", title: "Curves", show(host) {
    const label = add(host, "div", { className: "legend" });
    const canvas = add(host, "canvas", { className: "plot" });
    canvas.setAttribute("role", "img");
    const list = add(host, "div");
    list.style.height = "calc(100% - 290px)";
    list.style.minHeight = "200px";
    const last = report.glbs.length - 1;
    let chosen = null;
    const rows = searchable(list, "tracks", { onSelect: (item) => { chosen = item; draw(); } });
    const partner = new Map((report.data.pairs ?? []).map(([a, b]) => [b, a]));
    const tracks = () => {
      const of = report.glbs.map((glb, i) => glb.curves(report.clipOf(i, report.clip)));
      const key = (curve, scene) => {
        if (curve.pointer) return curve.pointer;
        const node = scene === last && last > 0 ? partner.get(curve.node) : curve.node;
        return node === undefined ? `new ${curve.node} ${curve.path}` : `${node} ${curve.path}`;
      };
      const all = new Map();
      of.forEach((list, scene) => list.forEach((curve) => {
        const entry = all.get(key(curve, scene)) ?? { curves: [] };
        entry.curves[scene] = curve;
        entry.text = `${curve.pointer ?? `${report.glbs[scene].name(curve.node)} · ${curve.path}`}`;
        all.set(key(curve, scene), entry);
      }));
      return [...all.values()].map((entry) => ({ ...entry,
        flags: entry.curves.map((curve, i) => `${report.data.scenes[i].label}: ${curve.times.length} keys`).filter(Boolean) }));
    };
    const points = (curve) => {
      const out = Array.from({ length: curve.width }, () => []);
      const start = curve.times[0], end = curve.times.at(-1);
      for (let i = 0; i <= 300; ++i) {
        const time = start + ((end - start) * i) / 300;
        valueAt(curve, time).forEach((value, k) => out[k].push([time, value]));
      }
      return out;
    };
    const dots = (curve, k) => Array.from(curve.times, (time) => [time, valueAt(curve, time)[k]]);
    const draw = () => {
      if (!chosen) return;
      const lines = [];
      chosen.curves.forEach((curve, scene) => {
        if (!curve?.times.length) return;
        points(curve).slice(0, 8).forEach((line, k) => lines.push({ points: line, dots: dots(curve, k),
          colour: scene === last ? "--after" : "--before", dashes: shades[k % shades.length] || [] }));
      });
      label.replaceChildren(`${chosen.text}: `);
      report.data.scenes.forEach((scene, i) => label.append(
        add(null, "b", { className: i === last ? "after" : "before", textContent: `${scene.label}  ` })));
      canvas.setAttribute("aria-label", `Curves of ${chosen.text}; ${chosen.flags.join(", ")}`);
      plot(canvas, lines);
    };
    let clip = -1;
    report.onRedraw(() => {
      if (clip !== report.clip) {
        clip = report.clip;
        rows.set(tracks());
        chosen = null;
        if (rows.shown.length) rows.select(0);
      }
      draw();
    });
  } };
}

function deviation(report) {
  return { id: "deviation", title: "Deviation", show(host) {
    if (!report.view) return void add(host, "p", { textContent: "This panel needs the 3D view." });
    const label = add(host, "p", { className: "legend" });
    const canvas = add(host, "canvas", { className: "plot" });
    canvas.setAttribute("role", "img");
    add(host, "h2", { textContent: "Nodes with the greatest deviation" });
    const where = add(host, "div");
    let clip = -1, result;
    report.onRedraw(() => {
      const [before, after] = report.view.scenes;
      if (clip !== report.clip) {
        clip = report.clip;
        const samples = Math.max(20, Math.min(240, Math.floor(400000 / (report.data.pairs.length + 1))));
        result = deviations(before, after, report.data.pairs, (scene, part) => report.timeOf(scene, part), samples);
        report.setPart(report.part);
        const order = result.worst.map((worst, i) => ({ ...worst, i })).sort((x, y) => y.amount - x.amount).slice(0, 15);
        where.replaceChildren();
        table(where, order.map(({ amount, part, i }) => [report.glbs[0].name(report.data.pairs[i][0]),
          amount.toExponential(2), `${report.timeOf(0, part).toFixed(2)} s`]), ["node", "deviation", "at"]);
      }
      const most = Math.max(...result.curve);
      label.textContent = `Greatest distance between the scenes of a node's origin or axes: ${most.toPrecision(3)}`;
      canvas.setAttribute("aria-label", label.textContent);
      plot(canvas, [{ colour: "--after", points: result.curve.map((y, i) => [(i / (result.curve.length - 1)) * after.duration, y]) }]);
    });
  } };
}

// What was removed and what was kept, in collapsible groups.
function changes(report) {
  return { id: "changes", title: "Changes", show(host) {
    const { operations = [], unreferenced = {}, kept = [], bytesBefore, bytesAfter } = report.data.result;
    if (bytesBefore) add(host, "p", { textContent: bytesAfter
      ? `${bytes(bytesBefore)} bytes became ${bytes(bytesAfter)} (${((100 * bytesAfter) / bytesBefore).toFixed(1)} %).`
      : `${bytes(bytesBefore)} bytes.` });
    const items = [];
    const group = (title, members, className) => {
      if (!members.length) return;
      items.push({ text: `${title} (${members.length})`, level: 0, hasChildren: true });
      for (const member of members) items.push({ level: 1, className, ...member });
    };
    for (const operation of operations) group(`removed: ${operation.name}`, operation.names.map((text) => ({ text })), "gone");
    group("removed: unreferenced", Object.entries(unreferenced).map(([kind, count]) => ({ text: `${count} ${kind}` })), "gone");
    const reasons = new Map();
    for (const { kind, name, by } of kept) {
      // A reason ends with the place of the reference, by which it must not be grouped.
      const [, reason, place] = by.match(/^(.*) \((\/.*)\)$/) ?? ["", by];
      if (!reasons.has(reason)) reasons.set(reason, []);
      reasons.get(reason).push({ text: `${kind} ${name}`, flags: place ? [place] : [] });
    }
    for (const [reason, members] of reasons) group(`kept: ${reason}`, members, "ok");
    for (const operation of operations)
      group(`not run: ${operation.name}`, (operation.refusedBy ?? []).map((use) => ({ text: `${use.extension} at ${use.place}` })), "");
    if (!items.length) add(host, "p", { textContent: "Nothing was removed." });
    const names = new Map();
    report.glbs[0].nodes.forEach((node, i) => names.set(node.name ?? `#${i}`, [...(names.get(node.name ?? `#${i}`) ?? []), i]));
    const rows = searchable(host, "changes", { isTree: true, onSelect: (item) => {
      const nodes = names.get(item.text)?.filter((node) => report.data.onlyBefore.includes(node));
      report.highlight(nodes?.length ? nodes : undefined);
    } });
    rows.set(items);
  } };
}

function timeline(report) {
  return { id: "timeline", title: "Timeline", show(host) {
    const lanes = report.glbs.flatMap((glb, scene) => (glb.json.animations ?? []).map((animation, i) => ({
      name: animation.name || `animation ${i}`, scene, range: glb.range(i), keys: glb.curves(i).reduce((n, c) => n + c.times.length, 0) })));
    const end = Math.max(...lanes.map((lane) => lane.range[1]), 0.001);
    report.data.scenes.forEach((scene, i) => {
      add(host, "h2", { textContent: scene.label });
      for (const lane of lanes.filter((each) => each.scene === i)) {
        const row = add(host, "div", { className: `lane ${i === report.glbs.length - 1 ? "result" : ""}` });
        const [from, to] = lane.range;
        add(row, "span", { textContent: lane.name });
        const track = add(row, "div", { className: "track" });
        track.setAttribute("role", "img");
        track.setAttribute("aria-label", `${lane.name}: ${from.toFixed(2)} to ${to.toFixed(2)} s, ${lane.keys} keys`);
        track.title = track.getAttribute("aria-label");
        const bar = add(track, "i");
        bar.style.left = `${(100 * from) / end}%`;
        bar.style.width = `${(100 * (to - from)) / end}%`;
      }
    });
    add(host, "p", { className: "legend", textContent: `0 to ${end.toFixed(2)} s` });
  } };
}

function drawing(report) {
  return { id: "drawing", title: "Drawing", show(host) {
    const frame = add(host, "div", { className: "drawing" });
    const image = add(frame, "img", { alt: report.data.title });
    image.src = `data:image/svg+xml;base64,${btoa(String.fromCharCode(...new TextEncoder().encode(report.data.drawing)))}`;
    add(host, "h2", { textContent: "Measures" });
    table(host, report.data.measures ?? []);
  } };
}

function comparison(report) {
  return { id: "comparison", title: "Comparison", show(host) {
    const { same, aspects, largest, structure, drawn, unread } = report.data.result;
    add(host, "p", { className: same ? "ok" : "gone", textContent: same ? "The scenes are the same within the tolerance." : "The scenes differ." });
    table(host, Object.entries(aspects).map(([aspect, is]) => [aspect, is ? "same" : "different"]));
    add(host, "h2", { textContent: "Largest differences" });
    table(host, Object.entries(largest).map(([what, { amount, where = "", animation = "", time }]) =>
      [what.replace(/[A-Z]/g, (letter) => ` ${letter.toLowerCase()}`), amount === null ? "infinite" : Number(amount.toPrecision(4)), where, animation, time === undefined ? "" : `${time.toFixed(3)}\u00a0s`]),
      ["of", "amount", "where", "animation", "at"]);
    const items = [["structure", structure], ["drawn", drawn], ["unreadable", unread]].flatMap(([title, lines]) =>
      lines.length ? [{ text: `${title} (${lines.length})`, hasChildren: true, level: 0 }, ...lines.map((text) => ({ text, title: text, level: 1 }))] : []);
    if (!items.length) return;
    add(host, "h2", { textContent: "All differences" });
    const box = add(host, "div");
    box.style.height = "320px";
    searchable(box, "differences", { isTree: true }).set(items);
  } };
}

export function panelsOf(report) {
  const { kind } = report.data;
  const animated = report.glbs.some((glb) => glb.json.animations?.length);
  const two = report.glbs.length > 1;
  return [
    kind === "clean" && changes(report),
    kind === "compare" && comparison(report),
    kind === "text" && drawing(report),
    (kind === "merge" || kind === "split") && timeline(report),
    summary(report),
    report.glbs.length && tree(report),
    animated && curves(report),
    animated && two && report.data.pairs?.length && deviation(report),
  ].filter(Boolean);
}
