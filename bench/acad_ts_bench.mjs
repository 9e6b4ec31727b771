// Reads a DWG with acad-ts REPEAT times and prints the wall time of one read and the peak
// memory: node acad_ts_bench.mjs ORACLE_DIR FILE.dwg [REPEAT]
import fs from 'fs';
import { pathToFileURL } from 'url';
const entry = `${process.argv[2]}/node_modules/@node-projects/acad-ts/dist/index.js`;
const { DwgReader } = await import(pathToFileURL(entry).href);
const repeat = Number(process.argv[4] || 20);
const start = process.hrtime.bigint();
let count = 0;
for (let i = 0; i < repeat; ++i) {
  const buffer = fs.readFileSync(process.argv[3]);
  const bytes = buffer.buffer.slice(buffer.byteOffset, buffer.byteOffset + buffer.byteLength);
  const doc = DwgReader.readFromStream(bytes, () => {});
  count = 0;
  for (const _ of doc.modelSpace.entities) ++count;
}
const seconds = Number(process.hrtime.bigint() - start) / 1e9 / repeat;
const peak = process.resourceUsage().maxRSS / 1024;
console.log(`acad-ts read ${seconds.toFixed(4)} s entities ${count} peak ${peak.toFixed(1)} MB`);
