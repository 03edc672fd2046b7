// SPDX-License-Identifier: MIT
// Reads a scene for the panels without drawing it: the document and its curves.

export function bytesOf(base64) {
  const text = atob(base64);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) bytes[i] = text.charCodeAt(i);
  return bytes;
}

export class Glb {
  constructor(bytes) {
    this.buffer = bytes.buffer;
    const view = new DataView(this.buffer);
    const jsonSize = view.getUint32(12, true);
    this.json = JSON.parse(new TextDecoder().decode(bytes.subarray(20, 20 + jsonSize)));
    this.bin = 20 + jsonSize + 8;
    this.nodes = this.json.nodes ?? [];
    this.parents = new Int32Array(this.nodes.length).fill(-1);
    this.nodes.forEach((node, i) => node.children?.forEach((child) => (this.parents[child] = i)));
  }

  // The values of an accessor as floats; normalized integers as fractions. Sparse values are ignored.
  floats(index) {
    const accessor = this.json.accessors[index];
    const width = { SCALAR: 1, VEC2: 2, VEC3: 3, VEC4: 4 }[accessor.type] ?? 1;
    const out = new Float32Array(accessor.count * width);
    if (accessor.bufferView === undefined) return out;
    const view = this.json.bufferViews[accessor.bufferView];
    const types = { 5120: ["getInt8", 1, 127], 5121: ["getUint8", 1, 255], 5122: ["getInt16", 2, 32767],
      5123: ["getUint16", 2, 65535], 5125: ["getUint32", 4, 1], 5126: ["getFloat32", 4, 1] };
    const [get, size, most] = types[accessor.componentType];
    const stride = view.byteStride ?? width * size;
    const data = new DataView(this.buffer, this.bin + (view.byteOffset ?? 0) + (accessor.byteOffset ?? 0));
    for (let i = 0; i < accessor.count; ++i)
      for (let k = 0; k < width; ++k) {
        const value = data[get](i * stride + k * size, true);
        out[i * width + k] = accessor.normalized ? Math.max(value / most, -1) : value;
      }
    return out;
  }

  // The curves of an animation: {node, path, pointer, interpolation, times, values, width}.
  curves(animation) {
    const { channels = [], samplers = [] } = this.json.animations?.[animation] ?? {};
    return channels.map((channel) => {
      const sampler = samplers[channel.sampler];
      const times = this.floats(sampler.input);
      const values = this.floats(sampler.output);
      const interpolation = sampler.interpolation ?? "LINEAR";
      const width = values.length / times.length / (interpolation === "CUBICSPLINE" ? 3 : 1);
      return { node: channel.target.node, path: channel.target.path, interpolation, times, values, width,
        pointer: channel.target.extensions?.KHR_animation_pointer?.pointer };
    });
  }

  range(animation) {
    let start = Infinity, end = -Infinity;
    for (const { input } of this.json.animations?.[animation]?.samplers ?? []) {
      const { min, max, count } = this.json.accessors[input];
      const times = min && max ? [min[0], max[0]] : count ? this.floats(input) : [];
      start = Math.min(start, ...times.slice(0, 1));
      end = Math.max(end, ...times.slice(-1));
    }
    return Number.isFinite(start) ? [start, end] : [0, 0];
  }

  name(node) {
    return this.nodes[node]?.name || `node ${node}`;
  }
}

// A curve's value at a time, as an array of components.
export function valueAt(curve, time) {
  const { times, values, width, interpolation } = curve;
  const cubic = interpolation === "CUBICSPLINE";
  const at = (key, part = 1) => values.subarray((cubic ? 3 * key + part : key) * width).subarray(0, width);
  let next = 0;
  for (let low = 0, high = times.length; low < high;) {
    const middle = (low + high) >> 1;
    if (times[middle] <= time) low = middle + 1; else high = middle;
    next = low;
  }
  if (next === 0) return Array.from(at(0));
  if (next === times.length || interpolation === "STEP") return Array.from(at(next - 1));
  const span = times[next] - times[next - 1];
  const u = (time - times[next - 1]) / span;
  const a = at(next - 1), b = at(next);
  if (cubic) {
    const out = at(next - 1, 2), into = at(next, 0), u2 = u * u, u3 = u2 * u;
    return Array.from(a, (v, i) => (2 * u3 - 3 * u2 + 1) * v + (u3 - 2 * u2 + u) * span * out[i] +
      (3 * u2 - 2 * u3) * b[i] + (u3 - u2) * span * into[i]);
  }
  if (curve.path !== "rotation") return Array.from(a, (v, i) => v + u * (b[i] - v));
  // Along the shorter arc.
  const cosine = a.reduce((sum, v, i) => sum + v * b[i], 0);
  const angle = Math.acos(Math.min(Math.abs(cosine), 1));
  const [from, to] = angle > 1e-6 ? [Math.sin((1 - u) * angle), Math.sin(u * angle)].map((s) => s / Math.sin(angle)) : [1 - u, u];
  return Array.from(a, (v, i) => from * v + (cosine < 0 ? -to : to) * b[i]);
}
