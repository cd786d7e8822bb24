// Runs inside the browser page: loads the glTF the server hands out, poses its
// animations, frames it and returns the picture as a PNG data URL.
import * as THREE from 'three';
import { GLTFLoader } from 'three/addons/loaders/GLTFLoader.js';
import { RoomEnvironment } from 'three/addons/environments/RoomEnvironment.js';

const BACKGROUND = 0x808080;
const FIELD_OF_VIEW = 45;  // vertical, in degrees
// The camera looks down -Z, so a quad facing +Z is seen head-on.
const VIEW_DIRECTION = new THREE.Vector3(0, 0, -1);

function loadGltf(bytes) {
  // Every resource URI is handed to the server as it stands in the file, so
  // "../" and percent-encoding are resolved there, relative to the file.
  const loader = new GLTFLoader();
  return new Promise((resolve, reject) => {
    const fail = (error) => reject(new Error(`cannot read the glTF: ${error && error.message ? error.message : error}`));
    try {
      loader.parse(bytes, '/resource?uri=', resolve, fail);
    } catch (error) {
      fail(error);  // malformed JSON throws before the loader reports anything
    }
  });
}

// The world box of every mesh, line and point set as posed now (skinning and
// morph targets included).
function sceneBounds(root) {
  root.updateMatrixWorld(true);
  const box = new THREE.Box3();
  root.traverse((object) => {
    if (object.visible && (object.isMesh || object.isLine || object.isPoints)) {
      box.expandByObject(object, true);
    }
  });
  return box;
}

function frameCamera(box, width, height) {
  const camera = new THREE.PerspectiveCamera(FIELD_OF_VIEW, width / height, 0.01, 1000);
  const centre = new THREE.Vector3();
  let radius = 1;
  if (!box.isEmpty()) {
    box.getCenter(centre);
    radius = Math.max(box.getSize(new THREE.Vector3()).length() / 2, 1e-6);
  }
  // The bounding sphere fits the narrower of the two fields of view.
  const halfVertical = THREE.MathUtils.degToRad(FIELD_OF_VIEW / 2);
  const halfHorizontal = Math.atan(Math.tan(halfVertical) * camera.aspect);
  const distance = radius / Math.sin(Math.min(halfVertical, halfHorizontal));
  camera.position.copy(centre).addScaledVector(VIEW_DIRECTION, -distance);
  camera.up.set(0, 1, 0);
  camera.lookAt(centre);
  camera.near = Math.max(distance - radius * 1.01, distance * 1e-4);
  camera.far = distance + radius * 1.01;
  camera.updateProjectionMatrix();
  return camera;
}

// Image-based light from a neutral room, so that metals reflect something,
// plus a white key light from the camera's side, above it and to the right,
// so that faces turned different ways get different shades.
const ENVIRONMENT_INTENSITY = 0.4;
const KEY_INTENSITY = 0.8;
const KEY_OFFSET = new THREE.Vector3(1, 2, 3);  // right, up, towards the camera

function addLights(scene, renderer, centre, distance) {
  const pmrem = new THREE.PMREMGenerator(renderer);
  scene.environment = pmrem.fromScene(new RoomEnvironment(), 0.04).texture;
  scene.environmentIntensity = ENVIRONMENT_INTENSITY;
  pmrem.dispose();
  const key = new THREE.DirectionalLight(0xffffff, KEY_INTENSITY);
  key.position.copy(centre).addScaledVector(KEY_OFFSET.clone().normalize(), distance);
  key.target.position.copy(centre);
  scene.add(key);
  scene.add(key.target);
}

window.renderGltf = async ({ width, height, time }) => {
  const canvas = document.createElement('canvas');
  canvas.width = width;
  canvas.height = height;
  document.body.appendChild(canvas);
  let renderer;
  try {
    renderer = new THREE.WebGLRenderer({ canvas, antialias: true, preserveDrawingBuffer: true });
  } catch (error) {
    throw new Error(`WebGL is not available in the browser: ${error.message}`);
  }
  renderer.setPixelRatio(1);
  renderer.setSize(width, height, false);

  const response = await fetch('/model');
  if (!response.ok) throw new Error(`cannot read the glTF: ${await response.text()}`);
  const gltf = await loadGltf(await response.arrayBuffer());

  const scene = new THREE.Scene();
  scene.background = new THREE.Color(BACKGROUND);
  scene.add(gltf.scene);

  // Every clip at `time`; past a clip's end its last pose holds.
  const mixer = new THREE.AnimationMixer(gltf.scene);
  for (const clip of gltf.animations) {
    const action = mixer.clipAction(clip);
    action.setLoop(THREE.LoopOnce, 1);
    action.clampWhenFinished = true;
    action.play();
  }
  mixer.setTime(time);

  const bounds = sceneBounds(scene);
  const camera = frameCamera(bounds, width, height);
  const centre = bounds.isEmpty() ? new THREE.Vector3() : bounds.getCenter(new THREE.Vector3());
  addLights(scene, renderer, centre, camera.position.distanceTo(centre));
  renderer.render(scene, camera);
  const picture = canvas.toDataURL('image/png');
  renderer.dispose();
  return picture;
};
window.previewReady = true;
