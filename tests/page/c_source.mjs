// Prints a program with the source in C of every sample, which compares what the records encode to with the samples.
//
//   node c_source.mjs ENGINE
import {readFileSync, readdirSync} from "node:fs";
import {engineOf} from "./engine.mjs";

const samples = new URL("../../samples/", import.meta.url);
const engine = engineOf(process.argv[2]);
const functions = [], calls = [];
for (const file of readdirSync(samples).filter(each => each.endsWith(".bin"))) {
  const type = file.split(".")[0];
  const bytes = new Uint8Array(readFileSync(new URL(file, samples)));
  engine.open(0, type, bytes);
  const source = new TextDecoder().decode(engine.written(0, "c")).replace("#include <pavo_zorv.h>\n", "");
  const takesOptions = new RegExp(`_${type}_encode_ext\\([^)]*options`).test(
      readFileSync(new URL("../../include/pavo_zorv.h", import.meta.url), "utf8"));
  // The library's own encoding of a message that another encoder has written differently.
  const expected = engine.encode(type, new TextDecoder().decode(engine.open(0, type, bytes).json));
  functions.push(`static void test_${functions.length}(void) {${source}
  static const unsigned char expected[] = {${expected.length ? [...expected].join(", ") : "0"}};
  unsigned char buffer[sizeof expected + 1];
  size_t length = pavo_zorv_${type}_encode_ext(&message, buffer, sizeof buffer, NULL, NULL${takesOptions ? ", 0" : ""});
  if (length != ${expected.length} || memcmp(buffer, expected, length) != 0) {
    printf("${file}: other bytes\\n");
    failed = 1;
  }
}
`);
  calls.push(`  test_${calls.length}();\n`);
}
if (calls.length < 40) throw new Error(`only ${calls.length} samples`);
console.log(`#include <pavo_zorv.h>
#include <stdio.h>
#include <string.h>

static int failed = 0;

${functions.join("\n")}
int main(void) {
${calls.join("")}  printf("${calls.length} samples\\n");
  return failed;
}`);
