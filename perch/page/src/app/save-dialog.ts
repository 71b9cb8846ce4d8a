// Asks for the name under which a preset is saved in the folder given on the command line.
import { LitElement, css, html } from 'lit';
import { customElement, query, state } from 'lit/decorators.js';
import { shared } from './theme';

@customElement('save-dialog')
export class SaveDialog extends LitElement {
  static override styles = [
    shared,
    css`
      dialog {
        padding: 14px;
        border: 1px solid var(--edge);
        border-radius: 5px;
        background: var(--ground);
        color: var(--text);
      }
      dialog::backdrop {
        background: #0008;
      }
      label,
      input {
        display: block;
      }
      input[type='text'] {
        width: 260px;
        margin: 4px 0 10px;
      }
      .buttons {
        display: flex;
        gap: 8px;
        justify-content: flex-end;
      }
      .bad {
        max-width: 260px;
        margin: 0 0 10px;
        color: var(--bad);
      }
      .bad:empty {
        display: none;
      }
    `,
  ];

  @query('dialog') private dialog!: HTMLDialogElement;
  @query('input') private input!: HTMLInputElement;
  @state() private refusal = '';
  private save: (name: string) => Promise<void> = async () => {};

  // `save` throws with the sentence to show when the name is refused.
  ask(save: (name: string) => Promise<void>): void {
    this.save = save;
    this.refusal = '';
    this.dialog.showModal();
    this.input.select();
  }

  protected override render() {
    return html`<dialog aria-label="Save preset">
      <label for="name">Name of the preset</label>
      <input id="name" type="text" value="look.json" autocomplete="off" spellcheck="false" @keydown=${this.key} />
      <p class="bad" role="alert">${this.refusal}</p>
      <div class="buttons">
        <button @click=${() => this.dialog.close()}>Cancel</button>
        <button class="main" @click=${this.take}>Save</button>
      </div>
    </dialog>`;
  }

  private key(event: KeyboardEvent): void {
    if (event.key === 'Enter') void this.take();
  }

  private async take(): Promise<void> {
    try {
      await this.save(this.input.value.trim());
      this.dialog.close();
    } catch (error) {
      this.refusal = (error as Error).message;
    }
  }
}
