// SPDX-License-Identifier: MIT
// One or two scenes side by side under one camera.
import * as THREE from "three";
import { OrbitControls } from "three/addons/controls/OrbitControls.js";
import { GLTFLoader } from "three/addons/loaders/GLTFLoader.js";
import { Batches } from "./batches.js";

const cssColour = (name) => new THREE.Color(getComputedStyle(document.documentElement).getPropertyValue(name).trim());

class Shown {
  // objects: by index of the node in the document.
  constructor(gltf, objects) {
    this.root = gltf.scene;
    this.clips = gltf.animations;
    this.objects = objects;
    this.scene = new THREE.Scene();
    this.lights = [new THREE.HemisphereLight(0xffffff, 0x8890a0, 1.5), new THREE.DirectionalLight(0xffffff, 1.3)];
    this.lights[1].position.set(1, 2, 3);
    this.batches = new Batches(this.root);
    this.scene.add(this.root, this.batches.group, ...this.lights);
    this.scene.matrixWorldAutoUpdate = false;
    this.mixer = new THREE.AnimationMixer(this.root);
    this.lit = new Map();
  }

  setClip(index) {
    this.mixer.stopAllAction();
    const clip = this.clips[index];
    this.duration = clip?.duration ?? 0;
    this.action = clip ? this.mixer.clipAction(clip) : null;
    if (this.action) {
      this.action.setLoop(THREE.LoopOnce);
      this.action.clampWhenFinished = true;
      this.action.play();
    }
  }

  setTime(seconds) {
    if (!this.action) return;
    this.action.paused = false;
    this.action.enabled = true;
    this.action.time = 0;
    this.mixer.setTime(Math.min(Math.max(seconds, 0), this.duration));
  }

  // Highlights the nodes and dims all others; without nodes, restores the materials. To be called once before drawing.
  light(nodes, colour) {
    for (const [mesh, material] of this.lit) mesh.material = material;
    this.lit.clear();
    if (nodes?.length) this.mark(nodes, colour);
    this.scene.updateMatrixWorld(true);
    this.batches.gather();
  }

  mark(nodes, colour) {
    // Flat-shaded, since not every mesh has normals; drawn in front of coinciding meshes.
    const bright = new THREE.MeshStandardMaterial({ color: colour, emissive: colour, emissiveIntensity: 0.55, flatShading: true,
      side: THREE.DoubleSide, polygonOffset: true, polygonOffsetFactor: -2, polygonOffsetUnits: -2 });
    const dim = new THREE.MeshStandardMaterial({ color: 0x9aa0a6, flatShading: true, transparent: true, opacity: 0.28,
      depthWrite: false });
    dim.userData.isPlain = true;
    // A node's objects, without those of its child nodes.
    const gone = new Set();
    const isNode = new Set(this.objects);
    const add = (object) => {
      gone.add(object);
      for (const child of object.children) if (!isNode.has(child)) add(child);
    };
    for (const node of nodes) if (this.objects[node]) add(this.objects[node]);
    this.root.traverse((object) => {
      if (!object.material) return;
      this.lit.set(object, object.material);
      object.material = gone.has(object) ? bright : dim;
    });
  }
}

export class View {
  // nodes: of the scenes that will be shown.
  constructor(canvas, nodes) {
    this.canvas = canvas;
    this.scenes = [];
    this.camera = new THREE.PerspectiveCamera(40, 1, 0.01, 1000);
    this.side = new THREE.Vector3(0.45, 0.4, 1);
    this.turn = new THREE.Matrix4();
    // Edges are smoothed at several times the cost of a picture without a graphics card.
    this.renderer = new THREE.WebGLRenderer({ canvas, antialias: nodes < 5000 });
    this.renderer.toneMapping = THREE.NeutralToneMapping;
    this.renderer.setScissorTest(true);
    new ResizeObserver(() => this.draw()).observe(canvas);
  }

  // matrix: takes the scene to the space of the other one.
  async add(bytes, matrix) {
    const gltf = await new GLTFLoader().parseAsync(bytes.buffer, "");
    // The loader's own table of objects takes nodes that share a mesh for one.
    const nodes = (gltf.parser.json.nodes ?? []).map((_, node) => gltf.parser.getDependency("node", node));
    const shown = new Shown(gltf, await Promise.all(nodes));
    if (matrix) {
      shown.root.matrixAutoUpdate = false;
      shown.root.matrix.fromArray(matrix);
      this.turn = shown.root.matrix;
    }
    shown.light([]);
    this.scenes.push(shown);
    return shown;
  }

  // To be called once all scenes are added. The direction that is up without the matrix is up in the picture.
  control() {
    const lights = this.scenes.flatMap((shown) => shown.lights);
    for (const direction of [this.camera.up, this.side, ...lights.map((light) => light.position)]) direction.transformDirection(this.turn);
    this.controls = new OrbitControls(this.camera, this.canvas);
    this.controls.listenToKeyEvents(this.canvas);
    this.controls.addEventListener("change", () => this.draw());
  }

  fit() {
    const box = new THREE.Box3();
    for (const shown of this.scenes) {
      shown.scene.updateMatrixWorld(true);
      box.union(new THREE.Box3().setFromObject(shown.root));
    }
    if (box.isEmpty()) box.set(new THREE.Vector3(-1, -1, -1), new THREE.Vector3(1, 1, 1));
    const ball = box.getBoundingSphere(new THREE.Sphere());
    const radius = ball.radius || 1;
    // The smaller of the two angles of view decides.
    const half = (this.camera.fov / 2) * (Math.PI / 180);
    const aspect = this.canvas.clientWidth / Math.max(this.scenes.length, 1) / Math.max(this.canvas.clientHeight, 1);
    const distance = radius / Math.sin(Math.min(half, Math.atan(Math.tan(half) * aspect)));
    this.camera.position.copy(ball.center).addScaledVector(this.side, distance);
    this.camera.near = distance / 200;
    this.camera.far = distance * 20;
    this.controls.target.copy(ball.center);
    this.controls.update();
    this.draw();
  }

  // Draws at the next frame; several calls before it draw once.
  draw() {
    this.pending ??= requestAnimationFrame(() => {
      this.pending = null;
      const { clientWidth: width, clientHeight: height } = this.canvas;
      if (!width || !height) return;
      const ratio = Math.min(devicePixelRatio, 2);
      if (this.renderer.getPixelRatio() !== ratio) this.renderer.setPixelRatio(ratio);
      const size = this.renderer.getSize(new THREE.Vector2());
      if (size.x !== width || size.y !== height) this.renderer.setSize(width, height, false);
      const each = width / Math.max(this.scenes.length, 1);
      this.camera.aspect = each / height;
      this.camera.updateProjectionMatrix();
      const back = cssColour("--view");
      this.scenes.forEach((shown, i) => {
        this.renderer.setViewport(i * each, 0, each, height);
        this.renderer.setScissor(i * each, 0, each, height);
        this.renderer.setClearColor(back);
        shown.scene.updateMatrixWorld();
        this.renderer.render(shown.scene, this.camera);
      });
      this.frames = (this.frames ?? 0) + 1;
    });
  }
}

// The distance between the nodes of each pair, at evenly spaced fractions of the second clip: the greatest of the origin
// and the points one unit along each axis, in the second scene's space. Returns {curve, worst}: the greatest distance at
// each sample, and the greatest of each pair.
export function deviations(before, after, pairs, timeOf, samples) {
  const matrixA = new THREE.Matrix4(), points = [[0, 0, 0], [1, 0, 0], [0, 1, 0], [0, 0, 1]];
  const worst = pairs.map(() => ({ amount: 0, part: 0 }));
  const curve = [];
  const a = new THREE.Vector3(), b = new THREE.Vector3();
  for (let i = 0; i < samples; ++i) {
    const part = i / (samples - 1);
    before.setTime(timeOf(0, part));
    after.setTime(timeOf(1, part));
    before.scene.updateMatrixWorld(true);
    after.scene.updateMatrixWorld(true);
    let most = 0;
    pairs.forEach(([x, y], k) => {
      const from = before.objects[x], to = after.objects[y];
      if (!from || !to) return;
      matrixA.copy(from.matrixWorld);
      for (const point of points) {
        const amount = a.fromArray(point).applyMatrix4(matrixA).distanceTo(b.fromArray(point).applyMatrix4(to.matrixWorld));
        most = Math.max(most, amount);
        if (amount > worst[k].amount) worst[k] = { amount, part };
      }
    });
    curve.push(most);
  }
  return { curve, worst };
}
