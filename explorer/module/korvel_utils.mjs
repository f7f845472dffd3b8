// Loads korvel_utils.wasm, in a browser or in Node, and calls it: objects in, objects out.
//
//   import { loadKorvelUtils } from './korvel_utils.mjs';
//   const korvel = await loadKorvelUtils(bytesOfTheModule);
//   korvel.explain({ format: 'nv12', size: '1920x1080', chip: '0x43010000' });
//
// No number is computed here. What a call refuses is answered with { refusal: sentence }.

// The calls, and what each is asked with. All but `scene` and `svg` answer what korvel-layout's command of the same
// name prints with --json.
//
//   explain({ format, size, chip, ... })   the layout, its steps and warnings
//   scene({ format, size, chip, ... })     the rectangles of its picture, in elements, rows and bytes
//   svg({ format, size, chip, ... })       the picture: { svg }
//   diff({ a: { ... }, b: { ... } })       two requests against each other
//   chips()                                all chips
//   formats({ chip })                      all formats, and with a chip what it does with each
//   check({ bytes, chip, kind, strict })   the validator's verdict on bytes in base64 or hex
//   dump({ bytes, kind, all })             the fields of these bytes
//
// The names of a request are those of the command line's options: format, size, chip, unknown_chip, samples, planes,
// levels, linear, ubwc, extra, extended.
const CALLS = ['explain', 'scene', 'svg', 'diff', 'chips', 'formats', 'check', 'dump'];

// What the module may ask of the system around it: nothing but a place for reports, which go nowhere, as every answer
// has its warnings inside.
function systemFor(module, memoryOf) {
  const known = {
    fd_write(_file, parts, count, written) {
      const view = new DataView(memoryOf().buffer);
      let bytes = 0;
      for (let i = 0; i < count; ++i) bytes += view.getUint32(parts + 8 * i + 4, true);
      view.setUint32(written, bytes, true);
      return 0;
    },
    environ_sizes_get(count, bytes) {
      const view = new DataView(memoryOf().buffer);
      view.setUint32(count, 0, true);
      view.setUint32(bytes, 0, true);
      return 0;
    },
    environ_get: () => 0,
    emscripten_notify_memory_growth: () => {},
  };
  const imports = {};
  for (const { module: from, name } of WebAssembly.Module.imports(module)) {
    imports[from] ??= {};
    imports[from][name] =
      known[name] ??
      (() => {
        throw new Error(`the module asks for ${name}, which it has no use for`);
      });
  }
  return imports;
}

function start(module) {
  let memory;
  const instance = new WebAssembly.Instance(module, systemFor(module, () => memory));
  memory = instance.exports.memory;
  instance.exports._initialize();
  return instance.exports;
}

function textAt(memory, address) {
  const bytes = new Uint8Array(memory.buffer);
  return new TextDecoder().decode(bytes.subarray(address, bytes.indexOf(0, address)));
}

// `source`: the bytes of the module, a response of fetch(), or a compiled WebAssembly.Module.
export async function loadKorvelUtils(source) {
  if (typeof Response !== 'undefined' && source instanceof Response) source = await source.arrayBuffer();
  const module = source instanceof WebAssembly.Module ? source : await WebAssembly.compile(source);
  let exports = start(module);

  // The answer's text, as korvel-layout prints it.
  function answerText(call, asked) {
    const text = new TextEncoder().encode(JSON.stringify(asked ?? {}) + '\0');
    try {
      const address = exports.take_memory(text.length);
      new Uint8Array(exports.memory.buffer).set(text, address);
      const answer = textAt(exports.memory, exports[call](address));
      exports.give_memory(address);
      return answer;
    } catch (error) {
      // After a trap its memory is as the trap left it.
      exports = start(module);
      return JSON.stringify({ internal_error: String(error) });
    }
  }

  const korvel = { answerText };
  for (const call of CALLS) korvel[call] = (asked) => JSON.parse(answerText(call, asked));
  return korvel;
}
