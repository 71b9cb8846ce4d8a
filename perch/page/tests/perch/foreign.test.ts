// Effects that the page knows nothing of.
import assert from 'node:assert/strict';
import { after, test } from 'node:test';
import { violations } from '../browser/axe';
import { closeBrowser, openAt, settled } from '../browser/page';
import { setEachByKeys, stateOf } from './keyboard';
import { View, plugin, sample } from './program';
import { difference } from './shown';

after(closeBrowser);

const input = ['-i', sample('shot/beauty.0001.png'), '-o', '{}/result.png'];

test('an effect with controls of every type has a page', async () => {
  const view = await View.start(['--plugin', plugin('Invert'), ...input]);
  const { page, complaints, close } = await openAt(view.address);
  assert.equal(await setEachByKeys(page), 8);
  const { command } = await stateOf(page);
  assert.deepEqual(await difference(page, await view.rendered(command, 'result.png')), { size: [640, 360], sent: 0, shown: 0 });
  assert.deepEqual(await violations(page), []);
  assert.deepEqual(complaints, []);
  await close();
  assert.equal(await view.end(), 130);
});

test('what an effect says and refuses is on the page, which goes on', async () => {
  const view = await View.start(['--plugin', plugin('Report'), ...input]);
  const { page, close } = await openAt(view.address);
  const messages = page.getByRole('log', { name: 'Messages' });
  await messages.getByText(/amount 25, .* gain 1,/).first().waitFor();
  const failWith = page.getByRole('slider', { name: 'Fail With' });
  await failWith.fill('7');
  await messages.getByText('Error 7 in Report').first().waitFor();
  await failWith.fill('0');
  await settled(page);
  assert.equal((await stateOf(page)).parameters['Fail With'], 0);
  await close();
  assert.equal(await view.end(), 130);
});
