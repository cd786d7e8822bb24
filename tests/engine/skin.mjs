// Loads a written ".glb" with three.js and prints, for every skinned mesh,
// each vertex's position as stored and as three.js skins it, in world space.
//   node skin.mjs FILE [POSE.json]
// POSE.json maps node names to 16 numbers: the node's local matrix in
// glTF's column-major order, set before skinning (other nodes keep theirs).
import { readFileSync } from 'node:fs';
import * as THREE from 'three';
import { GLTFLoader } from 'three/examples/jsm/loaders/GLTFLoader.js';

const [file, posePath] = process.argv.slice(2);
const bytes = readFileSync(file);
const data = bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.byteLength);
const gltf = await new Promise((resolve, reject) => new GLTFLoader().parse(data, '', resolve, reject));
const scene = gltf.scene;

if (posePath) {
  const pose = JSON.parse(readFileSync(posePath, 'utf8'));
  for (const [name, local] of Object.entries(pose)) {
    const node = scene.getObjectByName(THREE.PropertyBinding.sanitizeNodeName(name));
    if (!node) throw new Error(`no node ${name}`);
    node.matrix.fromArray(local);
    node.matrix.decompose(node.position, node.quaternion, node.scale);
  }
}
scene.updateMatrixWorld(true);

const meshes = [];
scene.traverse((object) => {
  if (!object.isSkinnedMesh) return;
  object.skeleton.update();
  const position = object.geometry.getAttribute('position');
  const stored = [];
  const skinned = [];
  const v = new THREE.Vector3();
  for (let i = 0; i < position.count; ++i) {
    stored.push(position.getX(i), position.getY(i), position.getZ(i));
    object.getVertexPosition(i, v);
    v.applyMatrix4(object.matrixWorld);
    skinned.push(v.x, v.y, v.z);
  }
  meshes.push({ name: object.name, joints: object.skeleton.bones.map((bone) => bone.name), stored, skinned });
});
process.stdout.write(JSON.stringify({ meshes }));
