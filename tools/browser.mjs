// SPDX-License-Identifier: MIT
// A page in a browser without a window, for tests and pictures: talks to Chromium over two pipes.
import { spawn } from "node:child_process";
import { mkdtemp, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

export class Browser {
  static async start({ width = 1280, height = 800, program = process.env.CHROMIUM ?? "chromium" } = {}) {
    const browser = new Browser();
    browser.size = { width, height };
    browser.folder = await mkdtemp(join(tmpdir(), "zr-browser-"));
    browser.process = spawn(program, ["--headless=new", "--no-sandbox", "--disable-gpu", "--use-angle=swiftshader",
      "--enable-unsafe-swiftshader", "--disable-dev-shm-usage", "--hide-scrollbars", "--remote-debugging-pipe",
      `--user-data-dir=${browser.folder}`, `--window-size=${width},${height}`], { stdio: ["ignore", "ignore", "ignore", "pipe", "pipe"] });
    browser.waiting = new Map();
    browser.errors = [];
    let text = "";
    browser.process.stdio[4].on("data", (chunk) => {
      text += chunk;
      for (let end; (end = text.indexOf("\0")) >= 0; text = text.slice(end + 1)) browser.receive(JSON.parse(text.slice(0, end)));
    });
    browser.process.on("exit", () => browser.waiting.forEach(({ reject }) => reject(new Error("the browser ended"))));
    const { targetId } = await browser.send("Target.createTarget", { url: "about:blank" });
    ({ sessionId: browser.session } = await browser.send("Target.attachToTarget", { targetId, flatten: true }));
    await browser.send("Page.enable");
    await browser.send("Runtime.enable");
    await browser.send("Log.enable");
    await browser.send("Network.enable");
    await browser.send("Emulation.setDeviceMetricsOverride", { width, height, deviceScaleFactor: 1, mobile: false });
    return browser;
  }

  receive(message) {
    const { id, method, params, result, error } = message;
    if (id !== undefined) {
      const { resolve, reject } = this.waiting.get(id) ?? {};
      this.waiting.delete(id);
      return error ? reject?.(new Error(error.message)) : resolve?.(result);
    }
    if (method === "Runtime.exceptionThrown") this.errors.push(params.exceptionDetails.exception?.description ?? params.exceptionDetails.text);
    if (method === "Log.entryAdded" && params.entry.level === "error") this.errors.push(params.entry.text);
    if (method === "Network.requestWillBeSent" && !/^(file|data|blob|about):/.test(params.request.url))
      this.errors.push(`a request: ${params.request.url}`);
  }

  send(method, params = {}) {
    this.count = (this.count ?? 0) + 1;
    const id = this.count;
    this.process.stdio[3].write(JSON.stringify({ id, method, params, sessionId: this.session }) + "\0");
    return new Promise((resolve, reject) => this.waiting.set(id, { resolve, reject }));
  }

  async open(file) {
    await this.send("Page.navigate", { url: pathToFileURL(file).href });
    await this.until("document.documentElement?.dataset.ready === 'yes'");
  }

  async evaluate(expression) {
    const { result, exceptionDetails } = await this.send("Runtime.evaluate", { expression, awaitPromise: true, returnByValue: true });
    if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
    return result.value;
  }

  async until(expression, seconds = 90) {
    for (const end = Date.now() + seconds * 1000; Date.now() < end;) {
      if (await this.evaluate(expression)) return;
      await new Promise((resolve) => setTimeout(resolve, 50));
    }
    throw new Error(`never true: ${expression}`);
  }

  // A click with the mouse in the middle of the element, once it has come to rest; the expression is
  // evaluated while the button is down.
  async click(selector, meanwhile = "") {
    const box = await this.evaluate(`new Promise((resolve) => {
      const at = () => { const b = document.querySelector(${JSON.stringify(selector)}).getBoundingClientRect();
        return { x: b.x + b.width / 2, y: b.y + b.height / 2 }; };
      document.querySelector(${JSON.stringify(selector)}).scrollIntoView({ block: "nearest" });
      const settle = (before) => requestAnimationFrame(() => requestAnimationFrame(() => { const now = at();
        now.x === before.x && now.y === before.y ? resolve(now) : settle(now); }));
      settle(at()); })`);
    await this.send("Input.dispatchMouseEvent", { type: "mousePressed", ...box, button: "left", clickCount: 1 });
    await this.evaluate(meanwhile);
    await this.send("Input.dispatchMouseEvent", { type: "mouseReleased", ...box, button: "left", clickCount: 1 });
  }

  async press(key, text = key.length === 1 ? key : undefined) {
    const code = { ArrowDown: 40, ArrowUp: 38, ArrowLeft: 37, ArrowRight: 39, " ": 32 }[key];
    for (const type of ["keyDown", "keyUp"])
      await this.send("Input.dispatchKeyEvent", { type, key, text: type === "keyDown" ? text : undefined, windowsVirtualKeyCode: code });
  }

  async type(text) {
    await this.send("Input.insertText", { text });
  }

  async picture(file) {
    const { data } = await this.send("Page.captureScreenshot", { format: "png" });
    await writeFile(file, Buffer.from(data, "base64"));
  }

  async end() {
    this.process.kill();
    await new Promise((resolve) => (this.process.exitCode !== null ? resolve() : this.process.once("exit", resolve)));
    await rm(this.folder, { recursive: true, force: true, maxRetries: 5 });
  }
}
