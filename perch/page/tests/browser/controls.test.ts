import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import type { Page } from 'playwright-core';
import { violations } from './axe';
import { closeBrowser, open, settled } from './page';
import type { OpenPage } from './page';

let opened: OpenPage;
let page: Page;

before(async () => {
  opened = await open({ effect: 'everything' }, { colorScheme: 'light' });
  page = opened.page;
});
after(async () => {
  await opened.close();
  await closeBrowser();
});

async function value(name: string): Promise<unknown> {
  await settled(page);
  return opened.server.shot.state().parameters[name];
}

// Each control by keyboard alone.
const byKeys: readonly (readonly [string, string, readonly string[], unknown])[] = [
  ['slider', 'Amount', ['ArrowRight', 'ArrowRight'], 27],
  ['spinbutton', 'Amount', ['Control+A', '4', '0', '+', '2', 'Enter'], 42],
  ['spinbutton', 'Amount', ['Shift+ArrowUp'], 52],
  ['slider', 'Direction', ['ArrowRight', 'PageUp'], 106],
  ['spinbutton', 'Centre X', ['Control+A', '1', '2', 'Enter'], [12, 180]],
  ['combobox', 'Style', ['ArrowUp'], 'Coarse'],
];

for (const [role, name, keys, expected] of byKeys)
  test(`${role} ${name} is set by ${keys.join(' ')}`, async () => {
    await page.getByRole(role as 'slider', { name, exact: true }).focus();
    for (const key of keys) await page.keyboard.press(key);
    assert.deepEqual(await value(name.replace(' X', '')), expected);
  });

test('what the effect hides is not shown, and what it disables cannot be set', async () => {
  assert.equal(await page.getByRole('checkbox', { name: 'Hidden' }).count(), 0);
  assert.equal(await page.getByRole('checkbox', { name: 'Locked' }).isDisabled(), true);
});

test('a colour is typed or chosen', async () => {
  await page.getByRole('textbox', { name: 'Tint as text' }).fill('#102030');
  await page.keyboard.press('Enter');
  assert.equal(await value('Tint'), '#102030');
  await page.locator('input[type=color]').fill('#405060');
  assert.equal(await value('Tint'), '#405060');
});

test('a point is dragged on the picture', async () => {
  const handle = page.getByRole('button', { name: /^Centre on the picture/ });
  const box = await handle.boundingBox();
  const picture = await page.getByRole('img', { name: 'Result' }).boundingBox();
  assert.ok(box && picture);
  await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
  await page.mouse.down();
  await page.mouse.move(box.x + box.width / 2 + 100, box.y + box.height / 2 + 50, { steps: 5 });
  await page.mouse.up();
  const [x, y] = (await value('Centre')) as [number, number];
  const scale = picture.width / 640;
  assert.ok(Math.abs(x - 12 - 100 / scale) < 2 && Math.abs(y - 180 - 50 / scale) < 2, `${x}, ${y}`);
});

test('the dial turns with the pointer', async () => {
  const box = await page.getByRole('slider', { name: 'Direction' }).boundingBox();
  assert.ok(box);
  const [x, y] = [box.x + 17, box.y + 17];
  await page.mouse.move(x + 10, y);
  await page.mouse.down();
  await page.mouse.move(x, y + 10, { steps: 4 });
  await page.mouse.up();
  assert.ok(Math.abs(Number(await value('Direction')) - 196) <= 2);
});

test('a field gives up what is not a number, and keeps to the range', async () => {
  const field = page.getByRole('spinbutton', { name: 'Amount' });
  await field.fill('much');
  await page.keyboard.press('Enter');
  assert.equal(await field.inputValue(), '52');
  await field.fill('500');
  await page.keyboard.press('Enter');
  assert.equal(await value('Amount'), 100);
});

test('reset brings the default back and is hidden then', async () => {
  const reset = page.getByRole('button', { name: 'Reset Amount' });
  await reset.click();
  assert.equal(await value('Amount'), 25);
  assert.equal(await reset.isVisible(), false);
});

test('every control can be reached by Tab', async () => {
  const wanted = await page.locator('button:visible, select:visible, input:visible, [tabindex="0"]:visible, summary:visible').evaluateAll(
    (all) => all.filter((one) => !(one as HTMLInputElement).disabled).length,
  );
  await page.evaluate(() => (document.activeElement as HTMLElement | null)?.blur());
  const reached = new Set<string>();
  for (let press = 0; press < wanted + 10; press += 1) {
    await page.keyboard.press('Tab');
    reached.add(
      await page.evaluate(() => {
        let focused = document.activeElement;
        while (focused?.shadowRoot?.activeElement) focused = focused.shadowRoot.activeElement;
        const { x, y } = focused?.getBoundingClientRect() ?? { x: 0, y: 0 };
        return `${focused?.tagName} ${focused?.getAttribute('aria-label') ?? focused?.textContent?.trim()} ${x} ${y}`;
      }),
    );
  }
  assert.ok(reached.size >= wanted, `${reached.size} of ${wanted}`);
});

test('the page is accessible in light surroundings', async () => assert.deepEqual(await violations(page), []));

test('the page is accessible in dark surroundings, with keys and comparisons', async () => {
  const other = await open({}, { colorScheme: 'dark', viewport: { width: 1024, height: 768 } });
  await other.page.getByRole('button', { name: 'Key of Focal Point' }).click();
  for (const name of ['Wipe', 'Side by side']) {
    await other.page.getByRole('button', { name, exact: true }).click();
    assert.deepEqual(await violations(other.page), [], name);
  }
  assert.deepEqual(other.complaints, []);
  await other.close();
});

test('the console has nothing to complain of', () => assert.deepEqual(opened.complaints, []));
