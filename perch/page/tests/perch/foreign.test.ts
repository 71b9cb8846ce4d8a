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

test('an effect that crashes is told with frame and command, and a new instance renders what comes next', async () => {
  const shot = ['-i', sample('shot/beauty.####.png'), '-o', '{}/result.####.png'];
  const view = await View.start(['--plugin', plugin('Hostile'), ...shot], { PERCH_HOSTILE: 'abort@frame5' });
  const { page, close } = await openAt(view.address);
  const frame = page.getByRole('slider', { name: 'Frame', exact: true });
  await frame.fill('5');
  const messages = page.getByRole('log', { name: 'Messages' });
  await messages.getByText(/frame 5: .* crashed at FRAME_SETUP/).first().waitFor();
  await frame.fill('6');
  await settled(page);
  const { command } = await stateOf(page);
  const expected = await view.rendered(`${command} --frames 6`, 'result.0006.png');
  assert.deepEqual(await difference(page, expected), { size: [640, 360], sent: 0, shown: 0 });
  await close();
  assert.equal(await view.end(), 130);
});
