// How the picture is looked at: comparison, what lies behind alpha, zoom.
import { LitElement, css, html, nothing } from 'lit';
import { customElement, property } from 'lit/decorators.js';
import { Follow } from '../app/follow';
import { shared } from '../app/theme';
import type { Behind, Comparison, Viewing } from '../model/viewing';

const comparisons: readonly { readonly name: string; readonly value: Comparison; readonly title: string }[] = [
  { name: 'Result', value: 'result', title: 'The result alone' },
  { name: 'Wipe', value: 'wipe', title: 'Original and result, with a divider (W)' },
  { name: 'Side by side', value: 'side', title: 'Result and Focus view (D)' },
  { name: 'Overlay', value: 'overlay', title: 'Focus view over the result' },
];

@customElement('picture-bar')
export class PictureBar extends LitElement {
  static override styles = [
    shared,
    css`
      :host {
        display: flex;
        gap: 8px;
        align-items: center;
        padding: 4px 8px;
        border-bottom: 1px solid var(--line);
      }
      select {
        min-width: 0;
      }
      .space {
        flex: 1;
      }
      .percent {
        width: 44px;
        text-align: right;
      }
      .zoom {
        display: flex;
        gap: 4px;
        align-items: center;
      }
    `,
  ];

  @property({ attribute: false }) viewing!: Viewing;
  @property({ type: Boolean }) hasFocusView = false;

  constructor() {
    super();
    new Follow(this, () => this.viewing);
  }

  protected override render() {
    const { viewing } = this;
    const { comparison, behind, isFitted, view, isOriginalHeld } = viewing;
    const percent = view.scale * devicePixelRatio * 100;
    const hold = (isOriginalHeld: boolean) => () => viewing.set({ isOriginalHeld });
    const holdKey = (isOriginalHeld: boolean) => (event: KeyboardEvent) => {
      if (event.key === ' ' || event.key === 'Enter') viewing.set({ isOriginalHeld });
    };
    return html`<div class="segments" role="group" aria-label="Comparison">
        ${comparisons.map(({ name, value, title }) =>
          this.hasFocusView || value === 'result' || value === 'wipe'
            ? html`<button
                title=${title}
                aria-pressed=${comparison === value}
                @click=${() => viewing.set({ comparison: value })}
              >
                ${name}
              </button>`
            : nothing,
        )}
      </div>
      <button
        title="Hold to see the original (O)"
        aria-pressed=${isOriginalHeld}
        @pointerdown=${hold(true)}
        @pointerup=${hold(false)}
        @pointerleave=${hold(false)}
        @keydown=${holdKey(true)}
        @keyup=${holdKey(false)}
        @blur=${hold(false)}
      >
        Hold for original
      </button>
      <span class="space"></span>
      <select
        aria-label="Behind alpha"
        title="What lies behind transparent parts"
        @change=${(event: Event) => viewing.set({ behind: (event.target as HTMLSelectElement).value as Behind })}
      >
        <option value="checkerboard" .selected=${behind === 'checkerboard'}>Checkerboard</option>
        <option value="black" .selected=${behind === 'black'}>Black</option>
        <option value="white" .selected=${behind === 'white'}>White</option>
      </select>
      <div class="zoom" role="group" aria-label="Zoom">
        <span class="percent numbers dim">${percent.toFixed(percent < 10 ? 1 : 0)} %</span>
        <button class="bare" aria-label="Zoom out" title="Zoom out (-)" @click=${() => viewing.zoom(1 / 1.25)}>−</button>
        <button class="bare" aria-label="Zoom in" title="Zoom in (+)" @click=${() => viewing.zoom(1.25)}>+</button>
        <button title="The whole picture (F)" aria-pressed=${isFitted} @click=${() => viewing.fit()}>Fit</button>
        <button title="Pixel for pixel (1)" @click=${() => viewing.showPixels()}>1:1</button>
      </div>`;
  }
}
