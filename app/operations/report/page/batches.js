// SPDX-License-Identifier: MIT
// Small meshes that share a material, drawn with one call, since each call costs more than a small mesh: a batch is a
// skinned mesh whose bones are the meshes that it draws.
import * as THREE from "three";
import { mergeGeometries } from "three/addons/utils/BufferGeometryUtils.js";

const smallest = 1000;  // vertices of a mesh that is worth a call of its own
const unmoved = new THREE.Matrix4();

const canJoin = (object) => object.isMesh && !object.isSkinnedMesh && !object.isInstancedMesh && !object.morphTargetInfluences &&
  object.geometry.attributes.position.count < smallest &&
  // Transparent meshes are drawn from back to front, unless they all look alike.
  (!object.material.transparent || object.material.userData.isPlain) &&
  // A mirrored mesh shows the other side of its triangles.
  object.matrixWorld.determinant() >= 0;

// Only what looks the same when merged has the same key.
const keyOf = ({ geometry, material }) => [material.id, !geometry.index, ...Object.entries(geometry.attributes).map(([name, of]) =>
  [name, of.itemSize, of.normalized, of.array.constructor.name]).sort()].join(" ");

function merged(members) {
  const parts = members.map(({ geometry }, i) => {
    const part = new THREE.BufferGeometry();
    part.setIndex(geometry.index);
    for (const [name, attribute] of Object.entries(geometry.attributes))
      part.setAttribute(name, attribute.isInterleavedBufferAttribute ? attribute.clone() : attribute);
    const { count } = geometry.attributes.position, bones = new Uint16Array(count * 4), weights = new Uint8Array(count * 4);
    for (let k = 0; k < count; ++k) {
      bones[k * 4] = i;
      weights[k * 4] = 1;
    }
    part.setAttribute("skinIndex", new THREE.BufferAttribute(bones, 4));
    part.setAttribute("skinWeight", new THREE.BufferAttribute(weights, 4));
    return part;
  });
  return mergeGeometries(parts);
}

export class Batches {
  constructor(root) {
    this.root = root;
    this.group = new THREE.Group();
    this.joined = [];
  }

  // To be called when materials have changed; the world's matrices are up to date.
  gather() {
    for (const member of this.joined) member.layers.set(0);
    for (const batch of this.group.children) {
      batch.geometry.dispose();
      batch.skeleton.dispose();
    }
    this.group.clear();
    this.joined = [];
    const alike = new Map();
    this.root.traverse((object) => {
      if (!canJoin(object)) return;
      const key = keyOf(object);
      if (!alike.has(key)) alike.set(key, []);
      alike.get(key).push(object);
    });
    for (const all of alike.values()) {
      // As many as bones can be numbered.
      for (let from = 0; from + 1 < all.length; from += 0xffff) this.join(all.slice(from, from + 0xffff));
    }
  }

  join(members) {
    const batch = new THREE.SkinnedMesh(merged(members), members[0].material);
    batch.bind(new THREE.Skeleton(members, members.map(() => unmoved)), unmoved);
    batch.frustumCulled = false;
    for (const member of members) member.layers.disableAll();  // drawn by the batch
    this.joined.push(...members);
    this.group.add(batch);
  }
}
