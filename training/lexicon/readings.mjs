// Reads simplified words from standard input, one a line, and writes their pinyin: syllables with
// tone digits (0 neutral, v for ü), separated by blanks. The argument is the folder of pinyin-pro.
import { readFileSync } from 'node:fs';
import { pathToFileURL } from 'node:url';

const { pinyin } = await import(pathToFileURL(`${process.argv[2]}/dist/index.mjs`));
const options = { toneType: 'num', type: 'array', v: true, toneSandhi: false };
const words = readFileSync(0, 'utf8').split('\n').slice(0, -1);
process.stdout.write(words.map((word) => pinyin(word, options).join(' ') + '\n').join(''));
