// times.mjs LOADER MODULE
//
// How long the module takes for a layout with its explanation, and for its picture, text and objects included: the
// middle one of many calls. Run by hand; a test of times would fail on a busy machine.

import { readFileSync } from 'node:fs';
import { pathToFileURL } from 'node:url';

const [loader, module] = process.argv.slice(2);
const { loadKorvelUtils } = await import(pathToFileURL(loader));
const korvel = await loadKorvelUtils(readFileSync(module));

const SURFACES = {
  'R8G8B8A8, 1920 x 1080, linear': { format: 28, size: '1920x1080', linear: true },
  'R8G8B8A8, 1920 x 1080, UBWC': { format: 28, size: '1920x1080', ubwc: true },
  'NV12, 1920 x 1080': { format: 'nv12', size: '1920x1080' },
  'R8G8B8A8, 4096 x 4096, 12 levels, UBWC': { format: 28, size: '4096x4096', levels: 12, ubwc: true },
};

function middle_ms(call, request) {
  const times = [];
  for (let i = 0; i < 300; ++i) {
    const start = performance.now();
    korvel[call](request);
    times.push(performance.now() - start);
  }
  return times.sort((a, b) => a - b)[150];
}

for (const [name, request] of Object.entries(SURFACES)) {
  for (const call of ['explain', 'scene']) {
    console.log(`${name}, ${call}: ${middle_ms(call, request).toFixed(2)} ms`);
  }
}
