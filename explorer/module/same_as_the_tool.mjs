// same_as_the_tool.mjs LOADER MODULE KORVEL_LAYOUT
//
// Asks the module and korvel-layout the same, and expects the same text: random requests of a fixed seed, some of them
// refused, and every other call.

import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';

const [loader, module, tool] = process.argv.slice(2);
const { loadKorvelUtils } = await import(pathToFileURL(loader));
const korvel = await loadKorvelUtils(readFileSync(module));

const REQUESTS = 500;
const PAIRS = 60;

// xorshift32: the same numbers on every run.
let state = 0x9e3779b9;
function random(below) {
  state ^= state << 13;
  state ^= state >>> 17;
  state ^= state << 5;
  return (state >>> 0) % below;
}
const one_of = (list) => list[random(list.length)];
const happens = (of) => random(of) === 0;

function run(command, ...options) {
  const { status, stdout, stderr, error } = spawnSync(tool, [command, ...options], {
    encoding: 'utf8',
    maxBuffer: 1 << 28,
    env: { ...process.env, HXL_SIM_CHIP: '', HXL_SIM_FAIL: '', HXL_SIM_LOG: 'none' },
  });
  if (error) throw new Error(`${tool} cannot be run: ${error.message}`);
  return { status, stdout, stderr };
}

// What the tool says, in the words of the module's answers.
function told(...command) {
  const { status, stdout, stderr } = run(...command, '--json');
  assert.notEqual(status, null, `${command.join(' ')} ended by a signal`);
  if (status !== 2) return stdout;
  return JSON.stringify({ refusal: stderr.replace(/^korvel-layout: /, '').replace(/\n$/, '') });
}

const options_of = (request) =>
  Object.entries(request).flatMap(([name, value]) => {
    const option = `--${name.replace('_', '-')}`;
    if (value === true) return [option];
    return value === false ? [] : [option, String(value)];
  });

const { chips } = korvel.chips();
const { formats } = korvel.formats();
assert(chips.length > 10 && formats.length > 100, 'the lists of chips and formats are too short');

const chip_text = (chip) => `0x${chip.chip_id.toString(16).toUpperCase().padStart(8, '0')}`;

const SIZES = [1, 2, 3, 4, 15, 16, 17, 63, 64, 65, 100, 255, 256, 257, 640, 1080, 1920, 2000, 4096, 8191, 16384];
const size = () => (happens(2) ? one_of(SIZES) : 1 + random(5000));

function surface() {
  const format = one_of(formats);
  const request = {
    format: happens(2) && format.name ? format.name : String(format.id),
    size: `${size()}x${size()}${happens(3) ? `x${1 + random(40)}` : ''}`,
  };
  if (happens(3)) request.linear = true;
  if (happens(2)) request.ubwc = true;
  if (happens(6)) request.extra = true;
  if (happens(5)) request.levels = 1 + random(15);
  if (happens(6)) request.samples = one_of([1, 2, 4, 8, 3]);
  if (happens(10)) request.planes = 1 + random(4);
  return request;
}

const request = () => ({ ...surface(), chip: chip_text(one_of(chips)) });

const counts = { laid_out: 0, refused: 0 };
function compare(call, asked, command) {
  const answer = korvel.answerText(call, asked);
  assert.equal(answer, told(...command), `${call}(${JSON.stringify(asked)}), and korvel-layout ${command.join(' ')}`);
  if (answer.startsWith('{"refusal"')) ++counts.refused;
  else ++counts.laid_out;
}

for (let i = 0; i < REQUESTS; ++i) {
  const asked = request();
  compare('explain', asked, ['explain', ...options_of(asked)]);
}
assert(counts.laid_out > REQUESTS / 2, `only ${counts.laid_out} of ${REQUESTS} requests are laid out`);
assert(counts.refused > 5, `only ${counts.refused} of ${REQUESTS} requests are refused`);
console.log(`explain: ${REQUESTS} requests, ${counts.laid_out} laid out, ${counts.refused} refused`);

for (let i = 0; i < PAIRS; ++i) {
  const a = request();
  const b = happens(2) ? { ...a, chip: chip_text(one_of(chips)) } : request();
  const side = (options) => options.map((option) => `'${option}'`).join(' ');
  compare('diff', { a, b }, ['diff', '--a', side(options_of(a)), '--b', side(options_of(b))]);
}
console.log(`diff: ${PAIRS} pairs`);

compare('chips', {}, ['chips']);
for (const chip of chips) {
  compare('formats', { chip: chip_text(chip) }, ['formats', '--chip', chip_text(chip)]);
}
console.log(`chips, and formats on ${chips.length} chips`);

// Blobs as the tool writes them, one of them with a changed byte at a time.
const folder = mkdtempSync(join(tmpdir(), 'korvel-module-'));
try {
  process.chdir(folder);
  const made = run('show', '--format', 'nv12', '--size', '1920x1080', '--ubwc', '--blob', 'good.blob');
  assert.equal(made.status, 0, made.stderr);
  const good = readFileSync('good.blob');
  assert.equal(good.length, 5536);
  let refused = 0;
  for (let i = 0; i < 40; ++i) {
    const bytes = Buffer.from(good);
    if (i > 0) bytes[random(400)] ^= 1 << random(8);
    writeFileSync('record.blob', bytes);
    const asked = { bytes: bytes.toString('base64'), name: 'record.blob', chip: '0x43010000', strict: true };
    compare('check', asked, ['check', 'record.blob', '--chip', '0x43010000', '--strict']);
    if (korvel.check(asked).valid === false) ++refused;
    compare('dump', { bytes: asked.bytes, name: asked.name }, ['dump', 'record.blob']);
  }
  assert(refused > 3 && refused < 40, `${refused} of 40 records are refused`);
  console.log(`check and dump: 40 records, ${refused} refused`);
} finally {
  rmSync(folder, { recursive: true });
}
