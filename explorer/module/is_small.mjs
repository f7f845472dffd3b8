// is_small.mjs MODULE: at most 300,000 bytes have to reach a page, compressed by brotli as servers do.

import { readFileSync } from 'node:fs';
import { brotliCompressSync, gzipSync } from 'node:zlib';

const LIMIT_BYTES = 300_000;

const module = readFileSync(process.argv[2]);
const bytes = brotliCompressSync(module).length;
console.log(`${module.length} bytes, ${bytes} by brotli, ${gzipSync(module, { level: 9 }).length} by gzip -9`);
if (bytes > LIMIT_BYTES) {
  console.error(`${bytes} bytes are more than ${LIMIT_BYTES}`);
  process.exit(1);
}
