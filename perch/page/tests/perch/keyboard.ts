// Sets each parameter of an effect by keys alone.
import assert from 'node:assert/strict';
import type { Page } from 'playwright-core';
import type { Parameter, Session, State } from '../../src/model/session';
import { settled } from '../browser/page';

type Role = 'slider' | 'checkbox' | 'combobox' | 'textbox' | 'spinbutton';

interface Way {
  readonly role: Role;
  readonly name: string;
  readonly keys: readonly (readonly string[])[]; // one of them changes the value, wherever it is
}

function wayOf({ name, type }: Parameter): Way | null {
  switch (type) {
    case 'slider':
    case 'angle':
      return { role: 'slider', name, keys: [['ArrowRight'], ['ArrowLeft']] };
    case 'checkbox':
      return { role: 'checkbox', name, keys: [['Space']] };
    case 'popup':
      return { role: 'combobox', name, keys: [['ArrowDown'], ['ArrowUp']] };
    case 'colour':
      return { role: 'textbox', name: `${name} as text`, keys: [['Control+A', ...'#123456', 'Enter']] };
    case 'point':
      return { role: 'spinbutton', name: `${name} X`, keys: [['ArrowUp']] };
    default:
      return null;
  }
}

const asked = <T>(page: Page, path: string): Promise<T> =>
  page.evaluate(async (path) => (await (await fetch(path)).json()) as T, path);

export const sessionOf = (page: Page) => asked<Session>(page, '/api/session');
export const stateOf = (page: Page) => asked<State>(page, '/api/state');

// Checks that each control sets its own parameter and no other; those of one name come in the effect's order.
export async function setEachByKeys(page: Page): Promise<number> {
  const { parameters } = await sessionOf(page);
  const before = new Map<string, number>(); // controls of a role and name that have been set
  let count = 0;
  for (const parameter of parameters) {
    const way = wayOf(parameter);
    if (!way || !parameter.visible || !parameter.enabled) continue;
    const place = before.get(way.role + way.name) ?? 0;
    before.set(way.role + way.name, place + 1);
    const control = page.getByRole(way.role, { name: way.name, exact: true }).nth(place);
    const old = (await stateOf(page)).parameters;
    let changed: string[] = [];
    for (const keys of way.keys) {
      if (changed.length > 0) break;
      await control.focus();
      for (const key of keys) await page.keyboard.press(key);
      await page.evaluate(() => new Promise((done) => requestAnimationFrame(done)));
      await settled(page);
      const { parameters: now } = await stateOf(page);
      changed = Object.keys(now).filter((key) => JSON.stringify(now[key]) !== JSON.stringify(old[key]));
    }
    assert.deepEqual(changed, [parameter.key]);
    count += 1;
  }
  return count;
}
