// What concerns the whole: undo and redo, the two looks, presets, the command line, rendering, surroundings.
import { css, html, nothing, svg } from 'lit';
import { customElement, property, state } from 'lit/decorators.js';
import type { Look } from '../model/store';
import type { RenderNews } from '../server/events';
import { StoreElement } from './store-element';
import { setSurroundings, surroundings } from './surroundings';
import type { Surroundings } from './surroundings';
import { shared } from './theme';

const choices: readonly (readonly [Surroundings, string])[] = [
  ['auto', 'As the desktop'],
  ['light', 'Light'],
  ['dark', 'Dark'],
];

const fileName = (path: string) => path.split('/').at(-1) ?? path;

@customElement('top-bar')
export class TopBar extends StoreElement {
  static override styles = [
    shared,
    css`
      :host {
        display: flex;
        gap: 12px;
        align-items: center;
        padding: 6px 8px;
        border-bottom: 1px solid var(--line);
      }
      h1 {
        margin: 0;
        font: inherit;
        overflow: hidden;
        text-overflow: ellipsis;
        white-space: nowrap;
        min-width: 60px;
        flex: 1;
      }
      h1 b {
        font-weight: 600;
      }
      .set {
        display: flex;
        gap: 4px;
        align-items: center;
      }
      progress {
        width: 90px;
        height: 6px;
        accent-color: var(--accent);
      }
      input[type='file'] {
        display: none;
      }
    `,
  ];

  @property({ attribute: false }) news: RenderNews | null = null;
  @property({ type: Number }) rendered = 0; // frames
  @state() private around: Surroundings = surroundings();

  protected override render() {
    const { store } = this;
    const { effect, picture } = store.session;
    const other: Look = store.look === 'A' ? 'B' : 'A';
    return html`<h1><b>${effect.name}</b> <span class="dim" title=${picture.input}>${fileName(picture.input)}</span></h1>
      <div class="set" role="group" aria-label="History">
        <button class="bare" aria-label="Undo" title="Undo (Ctrl+Z)" ?disabled=${!store.canUndo} @click=${() => store.undo()}>
          ${svg`<svg viewBox="0 0 14 14" aria-hidden="true"><path d="M5.5 2 2.5 5l3 3M2.5 5H8a3.5 3.5 0 0 1 0 7H5"></path></svg>`}
        </button>
        <button class="bare" aria-label="Redo" title="Redo (Ctrl+Shift+Z)" ?disabled=${!store.canRedo} @click=${() => store.redo()}>
          ${svg`<svg viewBox="0 0 14 14" aria-hidden="true"><path d="M8.5 2l3 3-3 3M11.5 5H6a3.5 3.5 0 0 0 0 7h3"></path></svg>`}
        </button>
      </div>
      <div class="set">
        <div class="segments" role="group" aria-label="Look">
          ${(['A', 'B'] as const).map(
            (look) =>
              html`<button
                aria-label="Look ${look}"
                title="Look ${look} (X changes between the two)"
                aria-pressed=${store.look === look}
                @click=${() => store.showLook(look)}
              >
                ${look}
              </button>`,
          )}
        </div>
        <button title="Make look ${other} the same as this one" @click=${() => store.copyToOtherLook()}>
          Copy to ${other}
        </button>
      </div>
      <div class="set">
        <button @click=${this.chooseFile}>Load preset</button>
        <input type="file" accept=".json,application/json" tabindex="-1" aria-hidden="true" @change=${this.load} />
        <button @click=${() => this.tell('save-preset')}>Save preset</button>
      </div>
      <div class="set">
        <button @click=${() => this.tell('copy-command')}>Copy command</button>
        ${this.renderRender()}
      </div>
      <select aria-label="Surroundings" title="Around the picture" @change=${this.chooseAround}>
        ${choices.map(([value, name]) => html`<option value=${value} .selected=${this.around === value}>${name}</option>`)}
      </select>`;
  }

  private renderRender() {
    const { news } = this;
    if (news?.state !== 'running')
      return html`<button class="main" title="Render the shot with these values" @click=${() => this.tell('render')}>
        Render
      </button>`;
    const of = news.progress?.of ?? this.store.frames.length;
    return html`<progress aria-label="Rendering" max=${of} value=${this.rendered}></progress>
      <span class="numbers dim">${this.rendered}/${of}</span>
      <button @click=${() => this.tell('cancel-render')}>Cancel</button>${nothing}`;
  }

  private chooseFile(): void {
    this.shadowRoot?.querySelector<HTMLInputElement>('input[type=file]')?.click();
  }

  private async load(event: Event): Promise<void> {
    const input = event.target as HTMLInputElement;
    const file = input.files?.[0];
    input.value = '';
    if (file) this.tell('load-preset', await file.text());
  }

  private chooseAround(event: Event): void {
    this.around = (event.target as HTMLSelectElement).value as Surroundings;
    setSurroundings(this.around);
  }

  private tell(name: string, detail: unknown = null): void {
    this.dispatchEvent(new CustomEvent(name, { detail }));
  }
}
