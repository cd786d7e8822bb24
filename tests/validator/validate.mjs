#!/usr/bin/env node
// Validates glTF files with the pinned glTF validator and prints one JSON array
// with an entry per file: {"file", "report"} or, when the validator could not
// read the file at all, {"file", "error"}. External resources (".bin" files,
// images) are resolved relative to the file that names them.
// Usage: node validate.mjs FILE...
import fs from 'node:fs/promises';
import path from 'node:path';
import { createRequire } from 'node:module';

const require = createRequire(import.meta.url);
const validator = require('gltf-validator');

async function validate(file) {
  const bytes = new Uint8Array(await fs.readFile(file));
  const folder = path.dirname(path.resolve(file));
  return validator.validateBytes(bytes, {
    uri: file,
    maxIssues: 0,
    writeTimestamp: false,
    externalResourceFunction: async (uri) =>
      new Uint8Array(await fs.readFile(path.resolve(folder, decodeURIComponent(uri)))),
  });
}

const files = process.argv.slice(2);
if (files.length === 0) {
  console.error('usage: node validate.mjs FILE...');
  process.exit(2);
}
const results = [];
for (const file of files) {
  try {
    results.push({ file, report: await validate(file) });
  } catch (error) {
    results.push({ file, error: String(error) });
  }
}
process.stdout.write(JSON.stringify(results, null, 1) + '\n');
