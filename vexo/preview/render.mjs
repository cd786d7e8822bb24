// Renders a ".glb" or ".gltf" to a PNG with three.js in headless Chromium.
//   node render.mjs FILE OUT WIDTH HEIGHT TIME TIMEOUT_MS
// `vexo preview` runs it and checks the arguments. A failure prints one line
// on standard error and exits with status 1, or 3 when the time ran out. Nothing here reaches the network:
// the page, three's modules and the file come from a server on 127.0.0.1.
import { createServer } from 'node:http';
import { mkdtempSync, rmSync, readFileSync, accessSync, constants, openSync, writeSync, fsyncSync, closeSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { dirname, join, resolve, extname } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const threeRoot = join(here, 'node_modules', 'three');
const chromium = process.env.VEXO_PREVIEW_CHROMIUM || '/usr/bin/chromium';

// Flags for a software-rendering browser on a machine with no GPU and no
// network: without the network ones it waits on connections that never come.
const chromiumFlags = [
  '--headless=new', '--no-sandbox', '--disable-gpu', '--use-angle=swiftshader', '--enable-unsafe-swiftshader',
  '--disable-background-networking', '--disable-component-update', '--disable-sync', '--no-first-run',
  '--disable-quic', '--disable-default-apps', '--disable-extensions', '--mute-audio', '--no-default-browser-check',
  '--disable-dev-shm-usage',
];

const contentTypes = {
  '.html': 'text/html', '.js': 'text/javascript', '.mjs': 'text/javascript', '.png': 'image/png',
  '.jpg': 'image/jpeg', '.jpeg': 'image/jpeg', '.webp': 'image/webp', '.gltf': 'model/gltf+json',
  '.glb': 'model/gltf-binary', '.bin': 'application/octet-stream', '.json': 'application/json',
};

const pageHtml = `<!DOCTYPE html>
<html><head><meta charset="utf-8">
<style>html,body{margin:0;background:#808080;overflow:hidden}canvas{display:block}</style>
<script type="importmap">{"imports":{"three":"/three/build/three.module.js","three/addons/":"/three/examples/jsm/"}}</script>
<script type="module">import('/page.mjs').catch((error) => { window.previewFailed = String(error); });</script>
</head><body></body></html>`;

class Failure extends Error {}

function parseArguments(argv) {
  if (argv.length !== 6) throw new Failure('usage: render.mjs FILE OUT WIDTH HEIGHT TIME TIMEOUT_MS');
  const [file, out, width, height, time, timeout] = argv;
  return { given: file, file: resolve(file), out, width: Number(width), height: Number(height), time: Number(time), timeout: Number(timeout) };
}

function send(response, status, body, type = 'text/plain') {
  response.writeHead(status, { 'Content-Type': type, 'Cache-Control': 'no-store' });
  response.end(body);
}

// Files under `root` only: the page's own modules.
function sendUnder(response, root, relative) {
  const path = resolve(root, '.' + relative);
  if (!path.startsWith(root + '/')) return send(response, 403, 'outside the served folder');
  let body;
  try {
    body = readFileSync(path);
  } catch {
    return send(response, 404, `no file ${relative}`);
  }
  send(response, 200, body, contentTypes[extname(path).toLowerCase()] || 'application/octet-stream');
}

function startServer(gltfPath) {
  const gltfFolder = dirname(gltfPath);
  const server = createServer((request, response) => {
    const url = request.url || '/';
    if (url === '/') return send(response, 200, pageHtml, 'text/html');
    if (url === '/page.mjs') return send(response, 200, readFileSync(join(here, 'page.mjs')), 'text/javascript');
    if (url === '/model') {
      try {
        return send(response, 200, readFileSync(gltfPath), 'application/octet-stream');
      } catch (error) {
        return send(response, 404, `cannot read "${gltfPath}": ${error.message}`);
      }
    }
    if (url.startsWith('/resource?uri=')) {
      // A URI from the file, relative to the file's folder, percent-encoded.
      let relative;
      try {
        relative = decodeURIComponent(url.slice('/resource?uri='.length));
      } catch {
        return send(response, 400, 'malformed URI');
      }
      const path = resolve(gltfFolder, relative);
      try {
        return send(response, 200, readFileSync(path), contentTypes[extname(path).toLowerCase()] || 'application/octet-stream');
      } catch (error) {
        return send(response, 404, `cannot read "${relative}": ${error.message}`);
      }
    }
    if (url.startsWith('/three/')) return sendUnder(response, threeRoot, url.slice('/three'.length).split('?')[0]);
    send(response, 404, 'not found');
  });
  return new Promise((resolvePromise, reject) => {
    server.once('error', reject);
    server.listen(0, '127.0.0.1', () => resolvePromise(server));
  });
}

// Chromium runs in a process group of its own and outlives this process
// unless closed; one that does not close in time is killed.
async function closeBrowser(browser) {
  if (!browser) return;
  const closed = await Promise.race([
    browser.close().then(() => true, () => false),
    new Promise((done) => setTimeout(() => done(false), 3000)),
  ]);
  const child = browser.process();
  if (!closed && child && child.exitCode === null) child.kill('SIGKILL');
}

function writeFileSynced(path, bytes) {
  const fd = openSync(path, 'w');
  try {
    writeSync(fd, bytes);
    fsyncSync(fd);
  } finally {
    closeSync(fd);
  }
}

async function render(options, cleanup) {
  try {
    accessSync(options.file, constants.R_OK);
  } catch (error) {
    throw new Failure(`cannot read "${options.file}": ${error.message}`);
  }
  try {
    accessSync(chromium, constants.X_OK);
  } catch {
    throw new Failure(`chromium is missing: no program "${chromium}" (install it with: bash scripts/setup.sh)`);
  }
  let puppeteer;
  try {
    puppeteer = (await import('puppeteer-core')).default;
    accessSync(join(threeRoot, 'build', 'three.module.js'), constants.R_OK);
  } catch {
    throw new Failure(`the renderer's npm packages are missing in "${join(here, 'node_modules')}" (install them with: bash scripts/setup.sh)`);
  }

  const server = await startServer(options.file);
  cleanup.push(() => new Promise((done) => server.close(done)));
  const profile = mkdtempSync(join(tmpdir(), 'vexo-preview-'));
  cleanup.push(() => rmSync(profile, { recursive: true, force: true }));

  // Registered before the launch ends, so that a stop during it still closes the browser.
  const launching = puppeteer.launch({
    executablePath: chromium,
    headless: true,
    pipe: true,
    userDataDir: profile,
    args: chromiumFlags,
    defaultViewport: { width: options.width, height: options.height, deviceScaleFactor: 1 },
    timeout: options.timeout,
    protocolTimeout: options.timeout,
    handleSIGINT: false,
    handleSIGTERM: false,
    handleSIGHUP: false,
  });
  // Cleanup runs last to first: the browser closes before its profile goes.
  cleanup.push(async () => closeBrowser(await launching.catch(() => null)));
  let browser;
  try {
    browser = await launching;
  } catch (error) {
    throw new Failure(`cannot start chromium "${chromium}": ${error.message.split('\n')[0]}`);
  }

  const page = await browser.newPage();
  const pageErrors = [];
  page.on('pageerror', (error) => pageErrors.push(error.message));
  page.on('console', (message) => {
    if (message.type() === 'error') pageErrors.push(message.text());
  });
  page.setDefaultTimeout(options.timeout);
  const { port } = server.address();
  await page.goto(`http://127.0.0.1:${port}/`, { waitUntil: 'load' });
  // The page is ready once its modules loaded, or failed once one did not.
  await page.waitForFunction('window.previewReady === true || window.previewFailed !== undefined');
  const failed = await page.evaluate(() => window.previewFailed);
  if (failed !== undefined) {
    throw new Failure(`the preview page did not start: ${[failed, ...pageErrors].join('; ')}`);
  }
  let picture;
  try {
    picture = await page.evaluate((request) => window.renderGltf(request), {
      width: options.width, height: options.height, time: options.time,
    });
  } catch (error) {
    throw new Failure(error.message.split('\n')[0]);
  }
  const prefix = 'data:image/png;base64,';
  if (typeof picture !== 'string' || !picture.startsWith(prefix)) throw new Failure('the browser returned no PNG');
  writeFileSynced(options.out, Buffer.from(picture.slice(prefix.length), 'base64'));
}

async function main() {
  const cleanup = [];
  let status = 0;
  let timer;
  const runCleanup = async () => {
    while (cleanup.length) {
      try {
        await cleanup.pop()();
      } catch {
        // Best effort: the rest still runs.
      }
    }
  };
  let stopping = false;
  const stop = async (message, status = 1) => {
    if (stopping) return;
    stopping = true;
    process.stderr.write(message + '\n');
    await runCleanup();
    process.exit(status);
  };
  process.on('SIGTERM', () => stop('rendering was stopped'));
  process.on('SIGINT', () => stop('rendering was interrupted'));
  process.on('SIGHUP', () => stop('rendering was interrupted'));
  try {
    const options = parseArguments(process.argv.slice(2));
    const late = `rendering "${options.given}" took longer than ${options.timeout / 1000} seconds and was stopped`;
    timer = setTimeout(() => stop(late, 3), options.timeout);
    await render(options, cleanup);
  } catch (error) {
    // After a stop, what fails is the stop's doing and has been told.
    if (stopping) return;
    process.stderr.write((error instanceof Failure ? error.message : `rendering failed: ${error.message}`) + '\n');
    status = 1;
  }
  clearTimeout(timer);
  await runCleanup();
  process.exit(status);
}

main();
