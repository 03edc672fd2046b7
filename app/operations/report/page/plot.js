// SPDX-License-Identifier: MIT
// Lines over time on a canvas.

const colour = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();

// lines: {points: [[x, y]...], colour: "--before", dashes, dots: [[x, y]...]}
export function plot(canvas, lines, { unit = "s" } = {}) {
  const ratio = Math.min(devicePixelRatio, 2);
  const width = canvas.clientWidth || 600, height = canvas.clientHeight || 230;
  canvas.width = width * ratio;
  canvas.height = height * ratio;
  const context = canvas.getContext("2d");
  context.scale(ratio, ratio);
  const all = lines.flatMap((line) => line.points);
  if (!all.length) return;
  const least = (k) => all.reduce((low, p) => Math.min(low, p[k]), Infinity);
  const most = (k) => all.reduce((high, p) => Math.max(high, p[k]), -Infinity);
  let [left, right, low, high] = [least(0), most(0), least(1), most(1)];
  if (right - left === 0) right = left + 1;
  if (high - low === 0) { const pad = Math.abs(high) || 1; high += pad / 2; low -= pad / 2; }
  const box = { left: 64, right: width - 12, top: 12, bottom: height - 26 };
  const x = (v) => box.left + ((v - left) / (right - left)) * (box.right - box.left);
  const y = (v) => box.bottom - ((v - low) / (high - low)) * (box.bottom - box.top);
  context.font = "11px system-ui, sans-serif";
  context.fillStyle = colour("--dim");
  context.strokeStyle = colour("--line");
  context.textAlign = "right";
  for (let i = 0; i <= 4; ++i) {
    const value = low + ((high - low) * i) / 4;
    context.beginPath();
    context.moveTo(box.left, y(value));
    context.lineTo(box.right, y(value));
    context.stroke();
    const isSmall = value !== 0 && Math.max(Math.abs(low), Math.abs(high)) < 1e-3;
    context.fillText(isSmall ? value.toExponential(2) : Number(value.toPrecision(4)).toString(), box.left - 6, y(value) + 4);
  }
  context.textAlign = "center";
  for (let i = 0; i <= 4; ++i) {
    const value = left + ((right - left) * i) / 4;
    context.fillText(`${Number(value.toPrecision(4))} ${unit}`, Math.min(x(value), box.right - 14), height - 9);
  }
  for (const line of lines) {
    context.strokeStyle = context.fillStyle = colour(line.colour);
    context.setLineDash(line.dashes ?? []);
    context.lineWidth = 1.6;
    context.beginPath();
    line.points.forEach((p, i) => (i ? context.lineTo(x(p[0]), y(p[1])) : context.moveTo(x(p[0]), y(p[1]))));
    context.stroke();
    context.setLineDash([]);
    for (const dot of (line.dots ?? []).slice(0, 2000)) {
      context.beginPath();
      context.arc(x(dot[0]), y(dot[1]), 2.6, 0, 7);
      context.fill();
    }
  }
}
