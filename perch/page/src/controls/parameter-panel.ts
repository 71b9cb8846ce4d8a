// The controls of the effect, in its order and groups.
import { css, html } from 'lit';
import { customElement } from 'lit/decorators.js';
import type { TemplateResult } from 'lit';
import { StoreElement } from '../app/store-element';
import { shared } from '../app/theme';
import type { Parameter } from '../model/session';
import './parameter-row';

@customElement('parameter-panel')
export class ParameterPanel extends StoreElement {
  static override styles = [
    shared,
    css`
      :host {
        padding: 6px 8px 10px 12px;
      }
      h2 {
        margin: 4px 0 6px;
        font: inherit;
        font-weight: 600;
      }
      summary {
        height: 28px;
        line-height: 28px;
        font-weight: 600;
      }
      details > div {
        padding-left: 10px;
        border-left: 1px solid var(--line);
      }
    `,
  ];

  protected override render() {
    const visible = this.store.session.parameters.filter((parameter) => parameter.visible);
    return html`<h2>Parameters</h2>
      ${this.group(visible, { at: 0 })}`;
  }

  // The rows up to the end of the group that begins at `cursor`, groups within it included.
  private group(parameters: readonly Parameter[], cursor: { at: number }): TemplateResult[] {
    const rows: TemplateResult[] = [];
    for (;;) {
      const parameter = parameters[cursor.at++];
      if (!parameter || parameter.type === 'group-end') return rows;
      if (parameter.type === 'group')
        rows.push(
          html`<details open>
            <summary>${parameter.name}</summary>
            <div>${this.group(parameters, cursor)}</div>
          </details>`,
        );
      else rows.push(html`<parameter-row .store=${this.store} .parameter=${parameter}></parameter-row>`);
    }
  }
}
