// How fast the picture follows the hand: drags Focal Point over the sample still and prints pictures a second and the
// time from the input to the painted picture, and the processor time of each picture. `npm run bench`, with sizes of
// the browser's window after `--`, and with PERCH as in tests/perch/program.ts.
import { setTimeout } from 'node:timers/promises';
import { closeBrowser, openAt, settled } from './browser/page';
import { cpuTimes } from './cpu-time';
import { View, sample } from './perch/program';

const step = 16; // ms between two moves of the hand; the browser gives a page one of them per frame of the screen
const seconds = 5;

interface Measured {
  readonly paints: readonly number[]; // when each picture was on the screen
  readonly delays: readonly number[]; // from the input to that
}

const files = ['-i', sample('still/beauty.png'), '--control-layer', sample('still/depth.png'), '-o', '{}/still.png'];
const median = (numbers: readonly number[]) => [...numbers].sort((a, b) => a - b)[Math.floor(numbers.length / 2)] ?? NaN;

async function measure(viewport: { width: number; height: number }, options: readonly string[]): Promise<void> {
  const view = await View.start([...files, '--maximum-blur', '30', ...options]);
  const { page, close } = await openAt(view.address, { viewport });
  const focal = page.getByRole('slider', { name: 'Focal Point' });
  const box = await focal.boundingBox();
  const picture = await page.getByRole('img', { name: 'Result' }).boundingBox();
  if (!box || !picture) throw new Error('the page has no slider');

  // The page sends values under serials and shows pictures of them; both are noted beside the times of the inputs.
  await page.getByRole('img', { name: 'Result' }).evaluate((canvas) => {
    const inputAt = new Map<number, number>();
    const sentAt = new Map<string, number>();
    const measured = { paints: [] as number[], delays: [] as number[] };
    Object.assign(window, { measured });
    window.addEventListener(
      'input',
      (event) => inputAt.set(Number((event.composedPath()[0] as HTMLInputElement).value), performance.now()),
      { capture: true },
    );
    const send = window.fetch;
    window.fetch = (path, init) => {
      if (String(path).startsWith('/api/picture') && init?.method === 'POST') {
        const { serial, parameters } = JSON.parse(String(init.body)) as { serial: number; parameters: Record<string, number> };
        const begin = inputAt.get(parameters['Focal Point'] ?? NaN);
        if (begin !== undefined) sentAt.set(String(serial), begin);
      }
      return send(path, init);
    };
    new MutationObserver(() => {
      const begin = sentAt.get((canvas as HTMLElement).dataset.shows ?? '');
      sentAt.delete((canvas as HTMLElement).dataset.shows ?? '');
      requestAnimationFrame(() => {
        measured.paints.push(performance.now());
        if (begin !== undefined) measured.delays.push(performance.now() - begin);
      });
    }).observe(canvas, { attributes: true, attributeFilter: ['data-serial'] });
  });

  // Its own mouse makes the page look for what is dragged at every move, which no hand does.
  const devtools = await page.context().newCDPSession(page);
  await page.mouse.move(box.x + 8, box.y + box.height / 2);
  await page.mouse.down();
  const spentBefore = cpuTimes();
  const begin = Date.now();
  while (Date.now() < begin + 1000 * seconds) {
    const phase = (Date.now() - begin) / 900;
    await devtools.send('Input.dispatchMouseEvent', {
      type: 'mouseMoved',
      x: box.x + box.width * (0.5 - 0.4 * Math.cos(phase)),
      y: box.y + box.height / 2,
      button: 'left',
      buttons: 1,
    });
    await setTimeout(step);
  }
  const { paints, delays } = await page.evaluate(() => (window as unknown as { measured: Measured }).measured);
  const spent = (Date.now() - begin) / 1000;
  const cpu = Object.entries(cpuTimes()).map(
    ([role, time]) => `${role} ${((time - (spentBefore[role] ?? 0)) / paints.length).toFixed(0)}`,
  );
  await page.mouse.up();
  await settled(page);
  const rate = (paints.length / spent).toFixed(1);
  console.log(
    `${Math.round(picture.width)} x ${Math.round(picture.height)} ${options.join(' ')}: ${rate} pictures a second, ` +
      `${median(delays).toFixed(0)} ms from input to paint (median of ${delays.length})\n    ms of processor time a picture: ${cpu.join(', ')}`,
  );
  await close();
  await view.end();
}

const windows = process.argv.length > 2 ? process.argv.slice(2) : ['1024x768', '1440x900', '1680x1080', '1920x1080'];
for (const options of [['--blur-type', 'Coarse'], ['--blur-type', 'Fine']])
  for (const size of windows) {
    const [width = 0, height = 0] = size.split('x').map(Number);
    await measure({ width, height }, options);
  }
await closeBrowser();
