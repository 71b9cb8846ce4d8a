// What axe-core finds wrong for people who do not see the page or use no pointer.
import { readFileSync } from 'node:fs';
import type { Page } from 'playwright-core';
import { pageFolder } from '../folder';

interface Findings {
  readonly violations: readonly {
    readonly id: string;
    readonly nodes: readonly { readonly html: string; readonly failureSummary: string }[];
  }[];
}

export async function violations(page: Page): Promise<readonly string[]> {
  await page.evaluate(readFileSync(new URL('node_modules/axe-core/axe.min.js', pageFolder), 'utf8'));
  return page.evaluate(async () => {
    const { violations } = await (window as unknown as { axe: { run(): Promise<Findings> } }).axe.run();
    return violations.flatMap(({ id, nodes }) => nodes.map((node) => `${id}: ${node.html.slice(0, 160)} ${node.failureSummary}`));
  });
}
