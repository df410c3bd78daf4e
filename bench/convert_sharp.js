// sharp at its defaults, on one thread: node convert_sharp.js png|jpg FOLDER FILE…
const path = require("path");
const sharp = require("sharp");

sharp.concurrency(1);

async function main(suffix, folder, files) {
  for (const file of files) {
    const target = path.join(folder, path.parse(file).name + "." + suffix);
    const picture = sharp(file);
    await (suffix === "png" ? picture.png() : picture.jpeg({ quality: 70 })).toFile(target);
  }
}

const [suffix, folder, ...files] = process.argv.slice(2);
main(suffix, folder, files).catch((error) => {
  console.error(error);
  process.exit(1);
});
