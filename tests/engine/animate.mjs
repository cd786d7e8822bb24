// Loads a written ".glb" or ".gltf" with three.js and plays every animation
// clip with an AnimationMixer: at each key time of the clip it prints every
// node's translation, rotation and scale as the mixer set them, and its local
// and world matrices as three.js composes them (column-major, glTF's order).
//   node animate.mjs FILE [TIMES]
// TIMES, a comma-separated list of seconds, replaces the key times.
import { readFileSync } from 'node:fs';
import * as THREE from 'three';
import { GLTFLoader } from 'three/examples/jsm/loaders/GLTFLoader.js';

// three.js reports the progress of its fetches (data URIs, .bin files) with
// the browser's ProgressEvent, which Node.js lacks.
globalThis.ProgressEvent ??= class ProgressEvent extends Event {
  constructor(type, init = {}) {
    super(type);
    Object.assign(this, init);
  }
};

const [file, timeList] = process.argv.slice(2);
const givenTimes = timeList ? timeList.split(',').map(Number) : null;
const bytes = readFileSync(file);
const data = bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.byteLength);
const base = file.includes('/') ? file.slice(0, file.lastIndexOf('/') + 1) : './';
// A ".gltf" names its ".bin" beside it; three.js fetches it through a file URL.
const gltf = await new Promise((resolve, reject) =>
  new GLTFLoader().parse(data, `file://${base}`, resolve, reject));
const scene = gltf.scene;

// Nodes by their glTF names, as the file wrote them (three.js sanitises its own).
const nodes = [];
scene.traverse((object) => {
  if (gltf.parser.associations.has(object)) {
    const { nodes: index } = gltf.parser.associations.get(object);
    // An unnamed node goes by "#INDEX".
    if (index !== undefined) nodes.push({ name: gltf.parser.json.nodes[index].name ?? `#${index}`, index, object });
  }
});

const clips = [];
for (const clip of gltf.animations) {
  const mixer = new THREE.AnimationMixer(scene);
  const action = mixer.clipAction(clip);
  // Played once and held, so that the last key time is not wrapped to the first.
  action.setLoop(THREE.LoopOnce, 1);
  action.clampWhenFinished = true;
  action.play();
  const times = givenTimes ?? [...new Set(clip.tracks.flatMap((track) => Array.from(track.times)))].sort((a, b) => a - b);
  const samples = [];
  for (const time of times) {
    mixer.setTime(time);
    scene.updateMatrixWorld(true);
    const values = {};
    for (const { name, object } of nodes) {
      values[name] = {
        translation: object.position.toArray(),
        rotation: object.quaternion.toArray(),
        scale: object.scale.toArray(),
        local: object.matrix.toArray(),
        world: object.matrixWorld.toArray(),
      };
    }
    samples.push({ time, nodes: values });
  }
  mixer.stopAllAction();
  mixer.uncacheRoot(scene);
  clips.push({ name: clip.name, samples });
}
process.stdout.write(JSON.stringify({ clips }));
