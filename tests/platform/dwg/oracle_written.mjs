// Reads DWG files with the two independent readers used as test oracles, acad-ts and
// libredwg-web, and prints per file and reader "FILE READER READ" once the file is read (so that
// an empty model space is told from a read that gave nothing), "FILE READER TYPE HANDLE" for each
// model-space entity (or "FILE READER ERROR reason"), each text as "FILE READER STRING value",
// each attribute of a model-space insert as "FILE READER ATTRIB tag=value" and each layer as
// "FILE READER LAYER name". Used by the DWG writer's oracle tests only.
// argv[2]: the folder npm installed the packages into; argv[3...]: the files.
import fs from 'fs';
import path from 'path';
import { pathToFileURL } from 'url';

// libredwg-web reports a read's status on the console; the status is taken from there.
let status = 0;
const print = console.log.bind(console);
for (const stream of ['log', 'warn', 'error', 'info']) {
  const original = console[stream].bind(console);
  console[stream] = (...args) => {
    const m = /error code: (\d+)/.exec(args.join(' '));
    if (m) status = Number(m[1]); else original(...args);
  };
}

const root = process.argv[2];
const acad = await import(pathToFileURL(`${root}/node_modules/@node-projects/acad-ts/dist/index.js`).href);
const lroot = `${root}/node_modules/@mlightcad/libredwg-web`;
const libre = await import(pathToFileURL(`${lroot}/dist/libredwg-web.js`).href);
const lib = await libre.LibreDwg.create(`${lroot}/wasm/`);

const hex = (h) => BigInt(h).toString(16).toUpperCase();

for (const file of process.argv.slice(3)) {
  const name = path.basename(file);
  const buffer = fs.readFileSync(file);
  try {
    const doc = acad.DwgReader.readFromStream(
      buffer.buffer.slice(buffer.byteOffset, buffer.byteOffset + buffer.byteLength), () => {});
    print(`${name} acad-ts READ`);
    for (const layer of doc.layers) print(`${name} acad-ts LAYER ${layer.name}`);
    for (const e of doc.modelSpace.entities) {
      print(`${name} acad-ts ${e.objectName} ${hex(e.handle)}`);
      if ((e.objectName === 'TEXT' || e.objectName === 'MTEXT') && typeof e.value === 'string') print(`${name} acad-ts STRING ${e.value}`);
      if (e.objectName === 'INSERT') for (const a of e.attributes) print(`${name} acad-ts ATTRIB ${a.tag}=${a.value}`);
    }
  } catch (error) {
    print(`${name} acad-ts ERROR ${error.message}`);
  }
  status = 0;
  const dwg = lib.dwg_read_data(new Uint8Array(buffer).buffer, libre.Dwg_File_Type.DWG);
  // Codes below 128 are the library's warnings; from 128 on the read failed.
  if (!dwg || status >= 128) {
    print(`${name} libredwg ERROR status ${status}`);
    continue;
  }
  const db = lib.convert(dwg);
  print(`${name} libredwg READ`);
  for (const layer of db.tables.LAYER.entries) print(`${name} libredwg LAYER ${layer.name}`);
  const model = db.tables.BLOCK_RECORD.entries.find((b) => b.name.toUpperCase() === '*MODEL_SPACE');
  for (const e of db.entities) {
    if (!model || e.ownerBlockRecordSoftId !== model.handle) continue;
    print(`${name} libredwg ${e.type} ${hex('0x' + e.handle)}`);
    if (e.type === 'TEXT' || e.type === 'MTEXT') print(`${name} libredwg STRING ${e.text}`);
    if (e.type === 'INSERT') for (const a of e.attribs) print(`${name} libredwg ATTRIB ${a.tag}=${a.text.text}`);
  }
  lib.dwg_free(dwg);
}
