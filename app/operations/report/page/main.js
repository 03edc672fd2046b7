// SPDX-License-Identifier: MIT
import { Glb, bytesOf } from "./glb.js";
import { View } from "./view.js";
import { panelsOf } from "./panels.js";

const data = JSON.parse(document.getElementById("data").textContent);
const $ = (id) => document.getElementById(id);
const store = { get: () => { try { return localStorage.getItem("zr-theme"); } catch { return null; } },
  set: (theme) => { try { localStorage.setItem("zr-theme", theme); } catch { /* a page opened from a file may have no storage */ } } };

$("title").textContent = data.title;
$("subtitle").textContent = data.subtitle ?? "";

class Report {
  constructor() {
    this.data = data;
    this.glbs = (data.scenes ?? []).map((scene) => new Glb(bytesOf(scene.glb)));
    this.redraws = [];
    this.clip = 0;
    this.part = 0;
    document.body.classList.toggle("no-scene", this.glbs.length === 0);
    this.useTheme(store.get() ?? (matchMedia("(prefers-color-scheme: dark)").matches ? "dark" : "light"));
    $("theme").addEventListener("click", () => this.toggleTheme());
    this.makeTabs();
    addEventListener("keydown", (event) => this.key(event));
    addEventListener("resize", () => this.redraw());
  }

  async start() {
    if (this.glbs.length) {
      try {
        await this.makeView();
      } catch (error) {
        // A browser without WebGL still shows the panels.
        $("labels").textContent = `The 3D view cannot be shown: ${error.message}`;
      }
    }
    this.showTab(0);
    document.documentElement.dataset.ready = "yes";
  }

  async makeView() {
    this.view = new View($("view"), Math.max(...this.glbs.map((glb) => glb.nodes.length)));
    for (const scene of data.scenes) {
      await this.view.add(bytesOf(scene.glb), scene.matrix);
      const label = $("labels").appendChild(document.createElement("span"));
      label.textContent = scene.label;
    }
    this.view.control();
    const select = $("animation");
    const names = this.glbs.at(-1).json.animations ?? this.glbs[0].json.animations ?? [];
    names.forEach((animation, i) => select.add(new Option(animation.name || `animation ${i}`, i)));
    if (!names.length) select.add(new Option("none", 0));
    const still = !names.length;
    for (const id of ["animation", "play", "time"]) $(id).disabled = still;
    select.addEventListener("change", () => this.setClip(Number(select.value)));
    $("time").addEventListener("input", () => { this.stop(); this.setPart(Number($("time").value)); });
    $("play").addEventListener("click", () => this.togglePlay());
    $("fit").addEventListener("click", () => this.view.fit());
    $("highlight-label").hidden = !(data.onlyBefore?.length && data.scenes.length > 1);
    $("highlight").addEventListener("change", () => this.highlight());
    this.highlight();
    this.view.fit();
    this.setClip(0);
  }

  // A scene's clip with the name or, without one, the index of a clip of the last scene; -1: none.
  clipOf(scene, clip) {
    const of = (i) => this.glbs[i].json.animations ?? [];
    const name = of(this.glbs.length - 1)[clip]?.name;
    const index = name ? of(scene).findIndex((animation) => animation.name === name) : clip;
    return index >= 0 ? index : scene === this.glbs.length - 1 ? clip : -1;
  }

  setClip(clip) {
    this.clip = clip;
    this.view?.scenes.forEach((shown, i) => shown.setClip(this.clipOf(i, clip)));
    this.setPart(0);
    this.redraw();
  }

  // The time, in seconds, of a scene's clip at a fraction of the last scene's clip: an exported clip may be a part of its
  // source, reversed or at another speed.
  timeOf(scene, part) {
    const { scenes } = this.view, last = scenes.length - 1;
    const name = this.glbs[last].json.animations?.[this.clip]?.name ?? "";
    const times = data.times ?? [];
    const map = times[this.clip]?.animation === name ? times[this.clip] : times.find((time) => time.animation === name);
    if (scene === last || !map) return part * scenes[scene].duration;
    return Math.min(Math.max(part * scenes[last].duration * map.scale + map.offset, map.from), map.to);
  }

  setPart(part) {
    this.part = part;
    this.view?.scenes.forEach((shown, i) => shown.setTime(this.timeOf(i, part)));
    $("time").value = part;
    const duration = this.view?.scenes.at(-1)?.duration ?? 0;
    $("clock").textContent = `${(part * duration).toFixed(2)} s`;
    $("time").setAttribute("aria-valuetext", $("clock").textContent);
    this.view?.draw();
  }

  togglePlay() {
    if (this.playing) return this.stop();
    this.playing = true;
    $("play").textContent = "❚❚";
    $("play").setAttribute("aria-label", "Pause");
    let last = performance.now();
    const step = (now) => {
      if (!this.playing) return;
      const durations = this.view.scenes.map((shown) => shown.duration);
      const duration = Math.max(...(data.times?.length ? durations.slice(-1) : durations), 0.001);
      this.setPart((this.part + (now - last) / 1000 / duration) % 1);
      last = now;
      requestAnimationFrame(step);
    };
    requestAnimationFrame(step);
  }

  stop() {
    this.playing = false;
    $("play").textContent = "▶";
    $("play").setAttribute("aria-label", "Play");
  }

  highlight(nodes) {
    if (!this.view) return;
    const wanted = nodes ?? ($("highlight").checked && data.scenes.length > 1 ? data.onlyBefore : []);
    this.view.scenes[0].light(wanted, this.colour("--gone"));
    this.view.draw();
  }

  colour(name) {
    return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
  }

  useTheme(theme) {
    document.documentElement.dataset.theme = theme;
    document.documentElement.style.colorScheme = theme;
  }

  toggleTheme() {
    const theme = document.documentElement.dataset.theme === "dark" ? "light" : "dark";
    store.set(theme);
    this.useTheme(theme);
    if (this.view) this.highlight();
    this.redraw();
    this.say(`${theme} colours`);
  }

  say(text) {
    $("live").textContent = text;
  }

  makeTabs() {
    this.panels = panelsOf(this);
    this.panels.forEach((panel, i) => {
      const tab = $("tabs").appendChild(document.createElement("button"));
      tab.type = "button";
      tab.id = `tab-${panel.id}`;
      tab.setAttribute("role", "tab");
      tab.setAttribute("aria-controls", "content");
      tab.textContent = panel.title;
      tab.addEventListener("click", () => this.showTab(i));
      tab.addEventListener("keydown", (event) => {
        const move = { ArrowRight: 1, ArrowLeft: -1 }[event.key];
        if (!move) return;
        this.showTab((i + move + this.panels.length) % this.panels.length);
        $("tabs").children[this.tab].focus();
        event.stopPropagation();
      });
    });
  }

  showTab(index) {
    if (!this.panels[index]) return;
    this.tab = index;
    [...$("tabs").children].forEach((tab, i) => {
      tab.setAttribute("aria-selected", i === index);
      tab.tabIndex = i === index ? 0 : -1;
    });
    $("content").setAttribute("aria-labelledby", `tab-${this.panels[index].id}`);
    $("content").replaceChildren();
    this.redraws = [];
    this.panels[index].show($("content"));
  }

  // Draws now, and again when the theme, the size or the clip changes.
  onRedraw(draw) {
    this.redraws.push(draw);
    draw();
  }
  redraw() {
    for (const draw of this.redraws) draw();
  }

  key(event) {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const typing = event.target.matches("input[type=search], select");
    if (event.key === "Escape" && typing) return event.target.blur();
    if (typing) return;
    if (event.key === " " && !event.target.matches("button, input") && this.view) this.togglePlay();
    else if (event.key === "t") this.toggleTheme();
    else if (event.key === "f") this.view?.fit();
    else if (event.key === "/") document.querySelector("#content input[type=search]")?.focus();
    else if (event.key >= "1" && event.key <= "9") this.showTab(Number(event.key) - 1);
    else if ((event.key === "," || event.key === ".") && this.view)
      this.setPart(Math.min(1, Math.max(0, this.part + (event.key === "." ? 0.01 : -0.01))));
    else return;
    event.preventDefault();
  }
}

const report = new Report();
report.start();
globalThis.zrReport = report;
